#include "platform/durable_file.h"
#include "platform/replacement.h"

#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace
{

RuntimeError saveError(const QSaveFile &file)
{
    // The toolkit has no code of its own for a full disk, only the system's text.
    for (const int number : {ENOSPC, EDQUOT})
        if (file.errorString() == qt_error_string(number))
            return RuntimeError(RuntimeError::DiskFull);
    return fileError(file);
}

/// The toolkit's own sync takes no notice of a failure: what could not be brought to the disk would
/// still take the old file's place.
void syncContent(const QSaveFile &file)
{
    if (::fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOTSUP)
        return; // some file systems cannot sync
    throw RuntimeError(errno == ENOSPC || errno == EDQUOT ? RuntimeError::DiskFull
                                                          : RuntimeError::PathFileAccess);
}

/// A new name may be lost with the power although what is done after it is not, unless its folder
/// is brought to the disk.
void syncNameOf(const QString &path)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // a folder that may be written but not read: its file system decides
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

class Replacement::Draft
{
public:
    QSaveFile file;
};

Replacement::Replacement(const QString &path) : m_draft(std::make_unique<Draft>())
{
    m_draft->file.setFileName(path);
    if (!m_draft->file.open(QIODevice::WriteOnly))
        throw saveError(m_draft->file);
}

Replacement::~Replacement() = default;

void Replacement::write(QByteArrayView bytes)
{
    // A full disk first takes less than it was given, and only then says why.
    while (!bytes.isEmpty()) {
        const qint64 written = m_draft->file.write(bytes.data(), bytes.size());
        if (written <= 0)
            throw saveError(m_draft->file);
        bytes = bytes.sliced(written);
    }
}

void Replacement::commit()
{
    // The toolkit's commit takes no notice when what it still held back cannot be written: it would
    // put a cut file in the old one's place.
    if (!m_draft->file.flush())
        throw saveError(m_draft->file);
    syncContent(m_draft->file);
    if (!m_draft->file.commit())
        throw saveError(m_draft->file);
    syncNameOf(m_draft->file.fileName());
}
