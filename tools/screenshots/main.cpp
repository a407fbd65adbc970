// Pictures of the windows, for the manual and the README, most of them at two font sizes:
//
//   screenshots STATION_FOLDER IMAGE_FOLDER PRINTED_PAGE
//
// The station's folder is newly laid and is written to; PRINTED_PAGE is the PDF document that
// printing the diagrams makes. `take` beside this file does it all.
#include "app/station_application.h"
#include "tools/screenshots/photographer.h"
#include "tools/screenshots/posed_station.h"

#include <cstdio>

namespace
{

constexpr double kLargeFont = 1.6;

void takeAll(const QString &stationFolder, const QString &imageFolder, const QString &printedPage)
{
    PosedStation station(stationFolder, printedPage);
    const Photographer photographer(station, imageFolder);
    photographer.takeWindows();
    photographer.takeDialogs();
    photographer.takeHistoryLimits();
    photographer.takeAboutBox();
    station.choose(QStringLiteral("PrintDiag"));
}

/// Opened with large letters, as the windows are where the system has them.
void takeLarge(const QString &stationFolder, const QString &imageFolder, const QString &printedPage)
{
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * kLargeFont);
    QApplication::setFont(font);
    PosedStation station(stationFolder, printedPage);
    const Photographer photographer(station, imageFolder, QStringLiteral("_large"));
    photographer.takeWindows();
    photographer.takeDialogs();
}

} // namespace

int main(int argc, char **argv)
{
    StationApplication application(argc, argv);
    application.showReport = [](const QString &) {}; // standard error has it already
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: screenshots STATION_FOLDER IMAGE_FOLDER PRINTED_PAGE\n", stderr);
        return 2;
    }
    application.guard([&] {
        takeAll(arguments.at(1), arguments.at(2), arguments.at(3));
        takeLarge(arguments.at(1), arguments.at(2), arguments.at(3));
    });
    return 0;
}
