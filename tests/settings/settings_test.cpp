#include "app/settings/chart_settings.h"
#include "app/settings/schedule.h"
#include "app/settings/settings.h"
#include "chart/chart_grid.h"
#include "tests/support/fake_operator.h"
#include "tests/support/runtime_errors.h"
#include "tests/support/station_folder.h"

#include <QFile>
#include <gtest/gtest.h>

namespace
{

class SettingsTest : public ::testing::Test
{
protected:
    SettingsTest()
    {
        station.appFolder = folder.path();
        station.locale = QLocale(QLocale::Romanian);
        for (const char *name : {"Diagrama1", "Diagrama2"}) {
            Diagrama record;
            record.name = QString::fromLatin1(name);
            station.Diagrame.push_back(record);
        }
    }

    StationFolder folder;
    Station station;
    FakeOperator op;
    Settings settings{station, op};
};

const QString kConfigError = QStringLiteral("Eroare in /config/config.ini");

} // namespace

TEST_F(SettingsTest, ShippedFileFillsEveryRecordWithoutAMessage)
{
    for (Diagrama &record : station.Diagrame) {
        settings.incarca_nume_senzori(record);
        settings.incarca_setari_diagrama(record);
        EXPECT_LT(record.alarma_minim, record.alarma_maxim);
        EXPECT_GT(record.limita_maxima, 134);
        EXPECT_EQ(record.Titlu, QString::fromUtf8("Temperatura (° Celsius)"));
        EXPECT_EQ(record.sensorCount, 3);
    }
    EXPECT_EQ(station.Diagrame[1].Nume, QStringList({"T4", "T5", "T6"}));
    EXPECT_EQ(station.NumeFisier[1], "autoclava2.mdb");
    EXPECT_EQ(station.Diagrame[0].interval_scanare, 1);
    EXPECT_EQ(settings.optionalValue("ControlPlc.Settings ="), "9600,n,8,1");
    EXPECT_TRUE(op.told.isEmpty());
}

TEST_F(SettingsTest, CommaInANumberIsReadAndOneInANameCutsIt)
{
    folder.setValue("Diagrama1.limita_maxima =", "\"12,5\"");
    folder.setValue("NumeFisier1 =", "a,b");
    settings.incarca_setari_diagrama(station.Diagrame[0]);
    EXPECT_EQ(station.Diagrame[0].limita_maxima, 12.5);
    EXPECT_EQ(station.NumeFisier[0], "a");
}

TEST_F(SettingsTest, BadValuesEndInTheRuntimesErrors)
{
    const struct {
        QByteArray key, value;
        int error;
    } cases[] = {{"Diagrama1.alarma_minim =", "abc", RuntimeError::TypeMismatch},
                 {"Diagrama1.alarma_minim =", "", RuntimeError::TypeMismatch},
                 {"Diagrama1.interval_scanare =", "32768", RuntimeError::Overflow},
                 {"Diagrama1.masura_interval =", "7", 0}};
    for (const auto &c : cases) {
        const QByteArray before = folder.config();
        folder.setValue(c.key, c.value);
        EXPECT_EQ(errorOf([&] { settings.incarca_setari_diagrama(station.Diagrame[0]); }), c.error)
            << c.key.toStdString();
        EXPECT_TRUE(op.told.isEmpty());
        if (c.error)
            folder.setConfig(before);
    }
    EXPECT_EQ(errorOf([&] { avans_interval(station, wallTime(QDate(2026, 3, 7), QTime(9, 0))); }),
              RuntimeError::InvalidProcedureCall)
        << "an unknown unit fails when the schedule is reckoned, not before";
}

TEST_F(SettingsTest, MissingKeyTellsTheOperatorOnceAndLeavesTheRest)
{
    folder.setConfig("a =,1\r\nc =,3\r\n\r\n");
    station.Valori = {"x", "y", "z"};
    settings.citeste_config({"a =", "b =", "c ="}, 2);
    EXPECT_EQ(station.Valori, QStringList({"1", "y", "z"}));
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
    EXPECT_FALSE(settings.optionalValue("ControlPlc.CommPort ="));
    EXPECT_EQ(op.told.size(), 1);
}

TEST_F(SettingsTest, MissingFileOrFolderIsTheRuntimesError)
{
    QFile::remove(folder.configPath());
    EXPECT_EQ(errorOf([&] { settings.citeste_config({"a ="}, 0); }), RuntimeError::FileNotFound);
    station.appFolder += "/nowhere";
    EXPECT_EQ(errorOf([&] { settings.citeste_config({"a ="}, 0); }), RuntimeError::PathNotFound);
    EXPECT_TRUE(op.told.isEmpty());
}

TEST_F(SettingsTest, WriteTurnsDecimalCommasAndOnlyThose)
{
    station.Valori = {"12,5", "a,b"};
    settings.scrie_config({"Diagrama1.limita_minima =", "NumeFisier2 ="}, 1);
    EXPECT_EQ(station.Valori, QStringList({"12.5", "a,b"}));
    EXPECT_TRUE(
        folder.config().startsWith("Diagrama1.limita_minima =,12.5\r\nNumeFisier2 =,a,b\r\n"));
}

TEST_F(SettingsTest, WriteOfAKeyThatIsNotThereChangesNothing)
{
    const QByteArray before = folder.config();
    station.Valori = {"1", "2"};
    settings.scrie_config({"Diagrama1.limita_minima =", "NumeFisier5 ="}, 1);
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(folder.config(), before);
}

TEST_F(SettingsTest, TabsSaveAndReadBack)
{
    for (Diagrama &record : station.Diagrame)
        settings.incarca_setari_diagrama(record);
    station.Diagrame[1].alarma_minim = -2.5;
    station.Diagrame[1].interval_scanare = 5;
    station.NumeFisier[3] = "d.mdb";
    EXPECT_EQ(settings.chei_tab("Diagrama2", "Alarme", Settings::Mode::Scrie), 1);
    settings.scrie_config(station.Chei, 1);
    EXPECT_EQ(settings.chei_tab("Diagrama1", "Optiuni scanare", Settings::Mode::Scrie), 7);
    settings.scrie_config(station.Chei, 7);
    EXPECT_EQ(settings.chei_tab("Diagrama1", "Alta", Settings::Mode::Citeste), -1);

    Diagrama again;
    again.name = "Diagrama2";
    settings.incarca_setari_diagrama(again);
    EXPECT_EQ(again.alarma_minim, -2.5);
    EXPECT_EQ(again.interval_scanare, 5);
    EXPECT_EQ(station.NumeFisier[3], "d.mdb");
    EXPECT_TRUE(op.told.isEmpty());
}

TEST_F(SettingsTest, CalibrationIsTakenByLeadingNumberInTheScreensForm)
{
    for (int i = 1; i <= 3; ++i) {
        Sensor sensor;
        sensor.key = QStringLiteral("Diagrama1.Senzor%1").arg(i);
        station.sensors.push_back(sensor);
    }
    folder.setValue("Calibrare.Diagrama1.Senzor1 =", "-1.5x");
    settings.citeste_calibrari();
    EXPECT_EQ(station.sensors[0].calibrationText, "-1,5");

    station.sensors[1].key = "Diagrama7.Senzor1";
    settings.citeste_calibrari();
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(station.sensors[0].calibrationText, "-1,5");
    EXPECT_EQ(station.sensors[1].calibrationText, "0");
    EXPECT_EQ(station.sensors[2].calibrationText, "0");
}

TEST_F(SettingsTest, TabsReachTheChart)
{
    ChartGrid grid("Diagrama1", {"T1", "AL", "AL"}, 4);
    Diagrama &record = station.Diagrame[0];
    record.chart = &grid;
    record.limita_minima = 90;
    record.limita_maxima = 20; // any two limits are passed on
    record.alarma_minim = 5;
    record.alarma_maxim = 7;
    aplica_tab(record, "Limite grafic");
    EXPECT_EQ(grid.columnData(3)[3], 0);
    aplica_tab(record, "Alarme");
    EXPECT_EQ(grid.valueAxisMaximum(), 20);
    EXPECT_EQ(grid.valueAxisMinimum(), 90);
    EXPECT_EQ(grid.columnData(1)[0], 0);
    EXPECT_EQ(grid.columnData(2)[0], 5);
    EXPECT_EQ(grid.columnData(3)[3], 7);
}

TEST(Schedule, CountsUnitsOnTheWallClock)
{
    const QDateTime moment = wallTime(QDate(2026, 3, 28), QTime(23, 59, 59));
    EXPECT_EQ(addInterval(moment, 1, 0), wallTime(QDate(2026, 3, 29), QTime(0, 0, 0)));
    EXPECT_EQ(addInterval(moment, 5, 1), wallTime(QDate(2026, 3, 29), QTime(0, 4, 59)));
    // The night of the change to summer time has its usual 24 hours here.
    EXPECT_EQ(addInterval(moment, 4, 2), wallTime(QDate(2026, 3, 29), QTime(3, 59, 59)));
    EXPECT_EQ(addInterval(moment, -1, 3), wallTime(QDate(2026, 3, 27), QTime(23, 59, 59)));
}
