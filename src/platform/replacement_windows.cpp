#include "jet/until_granted_windows.h"
#include "platform/replacement.h"
#include "platform/runtime_error.h"

#include <QDir>
#include <QRandomGenerator>
#include <algorithm>

namespace
{

constexpr qsizetype kLargestWrite = 1 << 20; // bytes

RuntimeError systemError(DWORD number)
{
    switch (number) {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return RuntimeError(RuntimeError::DiskFull);
    case ERROR_PATH_NOT_FOUND:
        return RuntimeError(RuntimeError::PathNotFound);
    default:
        return RuntimeError(RuntimeError::PathFileAccess);
    }
}

std::wstring nativeName(const QString &path)
{
    return QDir::toNativeSeparators(QDir::current().absoluteFilePath(path)).toStdWString();
}

} // namespace

class Replacement::Draft
{
public:
    explicit Draft(const QString &path)
        : m_target(nativeName(path)),
          m_name(nativeName(
              QStringLiteral("%1.%2.tmp")
                  .arg(path, QString::number(QRandomGenerator::global()->generate(), 16)))),
          m_handle(CreateFileW(m_name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                               FILE_ATTRIBUTE_NORMAL, nullptr))
    {
        if (m_handle == INVALID_HANDLE_VALUE)
            throw systemError(GetLastError());
    }
    ~Draft()
    {
        if (m_handle != INVALID_HANDLE_VALUE)
            CloseHandle(m_handle);
        if (!m_name.empty())
            untilGranted([this] { return DeleteFileW(m_name.c_str()) != FALSE; });
    }
    Q_DISABLE_COPY_MOVE(Draft)

    void write(const char *bytes, DWORD size)
    {
        DWORD written = 0;
        if (!WriteFile(m_handle, bytes, size, &written, nullptr))
            throw systemError(GetLastError());
        if (written != size)
            throw RuntimeError(RuntimeError::DiskFull);
    }

    void putInPlace()
    {
        if (!FlushFileBuffers(m_handle))
            throw systemError(GetLastError());
        CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE));
        const DWORD number = untilGranted([this] {
            return MoveFileExW(m_name.c_str(), m_target.c_str(),
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
        });
        if (number != ERROR_SUCCESS)
            throw systemError(number);
        m_name.clear();
    }

private:
    std::wstring m_target;
    std::wstring m_name; ///< empty once it has become the target
    HANDLE m_handle;
};

Replacement::Replacement(const QString &path) : m_draft(std::make_unique<Draft>(path)) {}

Replacement::~Replacement() = default;

void Replacement::write(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const qsizetype size = std::min(bytes.size(), kLargestWrite);
        m_draft->write(bytes.data(), static_cast<DWORD>(size));
        bytes = bytes.sliced(size);
    }
}

void Replacement::commit()
{
    m_draft->putInPlace();
}
