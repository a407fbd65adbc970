// Pictures of every dialog at two font sizes, for the manual: screenshots STATION_FOLDER
// IMAGE_FOLDER Nothing is written but the pictures; the station's folder lends its settings.
#include "acquisition/form_calibrare.h"
#include "app/settings/settings.h"
#include "diagrams/live_diagrams.h"
#include "dialogs/frm_nume_senzori.h"
#include "dialogs/frm_opt_diag.h"
#include "dialogs/frm_titlu_diag.h"
#include "platform/message_box_operator.h"

#include <QApplication>
#include <QDir>
#include <cstdio>

namespace
{

constexpr QSize kScreenTwips(15360, 11520);
constexpr double kLargeFont = 1.6;

class Photographer
{
public:
    Photographer(QString folder, QString suffix)
        : m_folder(std::move(folder)), m_suffix(std::move(suffix))
    {
    }

    bool take(QDialog &&dialog, const QString &detail = {}) const
    {
        dialog.show();
        QApplication::processEvents();
        const QString name = dialog.objectName() + detail + m_suffix + QStringLiteral(".png");
        return dialog.grab().save(QDir(m_folder).filePath(name));
    }

private:
    QString m_folder;
    QString m_suffix;
};

bool takeAll(const Photographer &photographer, Station &station, Settings &settings, Operator &op,
             const Clock &clock)
{
    bool done = photographer.take(FormCalibrare(station, settings, op, kScreenTwips));
    for (const char *tab : {"LimiteGrafic", "SetAlarme", "OptiuniScanare"}) {
        frmOptDiag options(0, station, settings, clock, {}, kScreenTwips);
        options.selectTab(QLatin1String(tab));
        done &= photographer.take(std::move(options), QLatin1Char('_') + QLatin1String(tab));
    }
    done &= photographer.take(frmNumeSenzori(0, station, settings));
    frmTitluDiag title(station, settings);
    title.incarca_titlu(0);
    return done & photographer.take(std::move(title));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: screenshots STATION_FOLDER IMAGE_FOLDER\n", stderr);
        return 2;
    }
    Station station;
    station.appFolder = arguments.at(1);
    MessageBoxOperator op(QApplication::applicationName());
    Settings settings(station, op);
    const SystemClock clock;
    LiveDiagrams diagrams(station, settings, clock);
    diagrams.loadTables();
    diagrams.loadSettings();
    station.appFolder = QStringLiteral("/opt/monitor_autoclava"); // the same on every machine

    QFont font = QApplication::font();
    bool done = takeAll({arguments.at(2), {}}, station, settings, op, clock);
    font.setPointSizeF(font.pointSizeF() * kLargeFont);
    QApplication::setFont(font);
    done &= takeAll({arguments.at(2), QStringLiteral("_large")}, station, settings, op, clock);
    return done ? 0 : 1;
}
