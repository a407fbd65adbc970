#include "dialogs/names_and_title.h"
#include "tests/diagrams/diagrams_rig.h"

using Names = DiagramsRig;

TEST_F(Names, AnyTextLeavesASettingsFileThatLoads)
{
    load(live);
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
    load(live);
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
