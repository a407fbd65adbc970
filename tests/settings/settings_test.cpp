#include "app/settings/calibration.h"
#include "app/settings/schedule.h"
#include "tests/support/station_rig.h"

#include <QFile>

namespace
{

class SettingsTest : public StationRig
{
protected:
    SettingsTest()
    {
        for (const char *name : {"Diagrama1", "Diagrama2"}) {
            Diagrama record;
            record.name = QString::fromLatin1(name);
            station.Diagrame.push_back(record);
        }
    }
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
    EXPECT_EQ(settings.citeste_config({"a =", "b =", "c ="}), QStringList{"1"});
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
    EXPECT_FALSE(settings.optionalValue("ControlPlc.CommPort ="));
    EXPECT_EQ(op.told.size(), 1);
}

TEST_F(SettingsTest, MissingFileOrFolderIsTheRuntimesError)
{
    QFile::remove(folder.configPath());
    EXPECT_EQ(errorOf([&] { settings.citeste_config({"a ="}); }), RuntimeError::FileNotFound);
    station.appFolder += "/nowhere";
    EXPECT_EQ(errorOf([&] { settings.citeste_config({"a ="}); }), RuntimeError::PathNotFound);
    EXPECT_TRUE(op.told.isEmpty());
}

TEST_F(SettingsTest, WriteTurnsDecimalCommasAndOnlyThose)
{
    EXPECT_EQ(
        settings.scrie_config({"Diagrama1.limita_minima =", "NumeFisier2 ="}, {"12,5", "a,b"}),
        QStringList({"12.5", "a,b"}));
    EXPECT_TRUE(
        folder.config().startsWith("Diagrama1.limita_minima =,12.5\r\nNumeFisier2 =,a,b\r\n"));
}

TEST_F(SettingsTest, WriteOfAKeyThatIsNotThereChangesNothing)
{
    const QByteArray before = folder.config();
    settings.scrie_config({"Diagrama1.limita_minima =", "NumeFisier5 ="}, {"1", "2"});
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(folder.config(), before);
}

TEST_F(SettingsTest, CalibrationIsTakenByLeadingNumberInTheScreensForm)
{
    for (int i = 1; i <= 3; ++i) {
        Sensor sensor;
        sensor.key = QStringLiteral("Diagrama1.Senzor%1").arg(i);
        station.sensors.push_back(sensor);
    }
    folder.setValue("Calibrare.Diagrama1.Senzor1 =", "-1.5x");
    citeste_calibrari(station, settings);
    EXPECT_EQ(station.sensors[0].calibrationText, "-1,5");

    station.sensors[1].key = "Diagrama7.Senzor1";
    citeste_calibrari(station, settings);
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(station.sensors[0].calibrationText, "-1,5");
    EXPECT_EQ(station.sensors[1].calibrationText, "0");
    EXPECT_EQ(station.sensors[2].calibrationText, "0");
}
