#include "diagrams/image_export.h"
#include "app/settings/station.h"
#include "diagrams/texts.h"
#include "platform/durable_file.h"
#include "platform/file_date.h"
#include "platform/operator.h"
#include "platform/runtime_error.h"
#include "platform/shell.h"
#include "storage/failure.h"

#include <QBuffer>
#include <QDir>

namespace
{

QByteArray bitmap(const QImage &picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!picture.save(&buffer, "BMP"))
        throw RuntimeError(RuntimeError::InvalidProcedureCall);
    return bytes;
}

void openFolder(const ImageExport &with)
{
    const QString folder = with.station.imageFolder();
    try {
        with.shell.open(folder, Shell::Window::Minimised);
    } catch (const RuntimeError &) {
        with.op.tell(texts::diagrams::savedButNotOpened(QDir::toNativeSeparators(folder)),
                     Operator::Icon::Exclamation);
    }
}

QString imagePath(const ImageExport &with, const Diagrama &record)
{
    return with.station.imageFolder() + record.name + QLatin1Char('_') +
           data_pentru_fisier(with.clock, true, true) + QStringLiteral(".bmp");
}

} // namespace

void saveDiagramImages(const ImageExport &with)
{
    const std::optional<Failure> failure = attempt([&] {
        for (const Diagrama &record : with.station.Diagrame)
            replaceFile(imagePath(with, record), bitmap(with.capture(record)));
    });
    // A picture that cannot be saved is no reason to end the monitoring of a load.
    if (failure)
        with.op.tell(failure->text());
    else
        openFolder(with);
}
