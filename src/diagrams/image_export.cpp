#include "diagrams/image_export.h"
#include "app/settings/station.h"
#include "platform/durable_file.h"
#include "platform/file_date.h"
#include "platform/runtime_error.h"
#include "platform/shell.h"

#include <QBuffer>

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

} // namespace

QString imagePath(const Station &station, const Diagrama &record, const Clock &clock)
{
    return station.imageFolder() + record.name + QLatin1Char('_') +
           data_pentru_fisier(clock, true, true) + QStringLiteral(".bmp");
}

void saveDiagramImages(const Station &station, const DiagramCapture &capture, const Clock &clock,
                       Shell &shell)
{
    for (const Diagrama &record : station.Diagrame)
        replaceFile(imagePath(station, record, clock), bitmap(capture(record)));
    shell.open(station.imageFolder(), Shell::Window::Minimised);
}
