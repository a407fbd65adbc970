// Pictures of all windows, for the manual, the README and whoever changes a window:
//
//   screenshots STATION_FOLDER IMAGE_FOLDER PRINTED_PAGE [large]
//
// The station's folder is newly laid and is written to; PRINTED_PAGE is the PDF document that
// printing the diagrams makes. `large` takes the windows as they are where the system has large
// letters. `take` beside this file does it all.
#include "program/station_application.h"
#include "tools/screenshots/photographer.h"
#include "tools/screenshots/posed_station.h"

#include <cstdio>

namespace
{

constexpr double kLargeFont = 1.6;

void useLargeLetters()
{
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * kLargeFont);
    QApplication::setFont(font);
}

void takeAll(const QStringList &arguments, const QString &suffix)
{
    const QString &printedPage = arguments.at(3);
    PosedStation station(arguments.at(1), printedPage);
    Photographer(station, arguments.at(2), suffix).takeAll();
    station.choose(QStringLiteral("PrintDiag"));
}

} // namespace

int main(int argc, char **argv)
{
    StationApplication application(argc, argv);
    application.showReport = [](const QString &) {}; // standard error has it already
    const QStringList arguments = QApplication::arguments();
    const bool isLarge = arguments.size() == 5 && arguments.at(4) == QLatin1String("large");
    if (arguments.size() != 4 && !isLarge) {
        std::fputs("usage: screenshots STATION_FOLDER IMAGE_FOLDER PRINTED_PAGE [large]\n", stderr);
        return 2;
    }
    application.guard([&] {
        if (isLarge)
            useLargeLetters();
        takeAll(arguments, isLarge ? QStringLiteral("_large") : QString());
    });
    return 0;
}
