#include "app/settings/calibration.h"
#include "tests/support/station_rig.h"

using SettingsTest = StationRig;

static const QString kConfigError = QStringLiteral("Eroare in /config/config.ini");

TEST_F(SettingsTest, MissingKeyTellsTheOperatorOnceAndLeavesTheRest)
{
    folder.setConfig("a =,1\r\nc =,3\r\n\r\n");
    EXPECT_EQ(settings.citeste_config({"a =", "b =", "c ="}), QStringList{"1"});
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
    EXPECT_FALSE(settings.optionalValue("ControlPlc.CommPort ="));
    settings.scrie_config({"a =", "b ="}, {"1", "2"});
    EXPECT_EQ(op.told, QStringList({kConfigError, kConfigError}));
    EXPECT_EQ(folder.config(), "a =,1\r\nc =,3\r\n\r\n");
}

TEST_F(SettingsTest, CalibrationIsTakenByLeadingNumberUpToAMissingKey)
{
    station.sensors.resize(3);
    station.sensors[0].key = "Diagrama1.Senzor1";
    station.sensors[1].key = "Diagrama7.Senzor1";
    station.sensors[2].key = "Diagrama1.Senzor3";
    folder.setValue("Calibrare.Diagrama1.Senzor1 =", "-1.5x");
    folder.setValue("Calibrare.Diagrama1.Senzor3 =", "7");
    citeste_calibrari(station, settings);
    EXPECT_EQ(op.told, QStringList({kConfigError}));
    EXPECT_EQ(station.sensors[0].calibrationText, "-1,5");
    EXPECT_EQ(station.sensors[1].calibrationText, "0");
    EXPECT_EQ(station.sensors[2].calibrationText, "0");
}
