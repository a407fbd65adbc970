#include "acquisition/sample.h"
#include "app/settings/calibration.h"
#include "dialogs/names_and_title.h"
#include "tests/dialogs/dialog_rig.h"

using Names = DialogRig;

using Calibration = DialogRig;

TEST_F(Names, ReachFileLegendRecordAndSensorTableInOneStep)
{
    const QByteArray expected =
        configWith({"Diagrama2.Senzor1.Nume =,", "Diagrama2.Senzor2.Nume =,abur, sus",
                    "Diagrama2.Senzor3.Nume =,2.5"});
    renameSensors(station, settings, 1, {"", "abur, sus", "2,5"});
    EXPECT_EQ(folder.config(), expected);
    EXPECT_EQ(station.Diagrame[1].Nume, QStringList({"", "abur, sus", "2.5"}));
    EXPECT_EQ(live.chart(1).columnLabelOf(3), "2.5");

    renameSensors(station, settings, 0, {"egal", "egal", "T3"});
    for (const std::size_t i : {0, 1, 5})
        station.sensors[i].value = 60.0 + static_cast<double>(i);
    live.adauga_citiri(station.sensors);
    EXPECT_EQ(live.chart(1).columnData(3)[0], 65) << "readings keep reaching the series";
    EXPECT_EQ(live.chart(0).columnData(2)[0], 60) << "the first of two equal names wins";
}

TEST_F(Names, AnyTextLeavesASettingsFileThatLoads)
{
    for (const char *typed : {"\"T1", "\"", "a\r\nNumeFisier1 =,x", "șăț"}) {
        renameSensors(station, settings, 0, {QString::fromUtf8(typed), "b", "c"});
        load(live);
        EXPECT_TRUE(op.told.isEmpty()) << typed;
        EXPECT_EQ(station.Diagrame[0].Nume[2], "c") << typed;
        EXPECT_EQ(station.NumeFisier[0], "autoclava1.mdb") << typed;
    }
    EXPECT_EQ(station.Diagrame[0].Nume[0], QString::fromUtf8("șăț"));
}

TEST_F(Names, FailedWriteKeepsTheOldOnes)
{
    station.appFolder += "/nowhere";
    EXPECT_EQ(errorOf([&] {
                  renameSensors(station, settings, 0, {"a", "b", "c"});
              }),
              RuntimeError::PathNotFound);
    EXPECT_EQ(errorOf([&] { retitleDiagram(station, settings, 1, "Abur"); }),
              RuntimeError::PathNotFound);
    EXPECT_EQ(live.chart(0).columnLabelOf(1), "T1");
    EXPECT_EQ(station.Diagrame[1].Titlu, QString::fromUtf8("Temperatura (° Celsius)"));
}

TEST_F(Calibration, GoodOffsetsAreSavedAndCountFromTheNextReading)
{
    const QByteArray expected =
        configWith({"Calibrare.Diagrama1.Senzor1 =,1.5", "Calibrare.Diagrama1.Senzor2 =,-12.5",
                    "Calibrare.Diagrama1.Senzor3 =,0.125", "Calibrare.Diagrama2.Senzor1 =,0",
                    "Calibrare.Diagrama2.Senzor2 =,0", "Calibrare.Diagrama2.Senzor3 =,0"});
    QStringList offsets{"1,5", u"\u00A0-12.5\r"_qs, "0.125", "0", "0", "0"};
    EXPECT_TRUE(takeCalibrations(station, offsets));
    saveCalibrations(station, settings, offsets);
    EXPECT_EQ(folder.config(), expected);
    station.sensors[0].value = station.sensors[1].value = 100;
    completeSample(station, time.now());
    EXPECT_EQ(station.sensors[0].value, 101.5);
    EXPECT_EQ(station.sensors[1].value, 87.5);
}

TEST_F(Calibration, ABadFieldStopsBehindTheGoodOnesBeforeIt)
{
    for (const char *bad : {"", "1.2.3", "x"}) {
        QStringList offsets{"2,5", bad, "9,5", "9", "9", "9"};
        EXPECT_FALSE(takeCalibrations(station, offsets));
        EXPECT_EQ(offsets, QStringList({"2.5", bad, "9,5", "9", "9", "9"}));
        EXPECT_EQ(station.sensors[0].calibrationText, "2,5");
        EXPECT_EQ(station.sensors[2].calibrationText, "0");
    }
}
