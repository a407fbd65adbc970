#include "tests/diagrams/diagrams_rig.h"

namespace
{

class LiveDiagramsTest : public DiagramsRig
{
protected:
    ChartGrid &chart1 = live.chart(0);
    ChartGrid &chart2 = live.chart(1);
};

} // namespace

TEST_F(LiveDiagramsTest, LoadBuildsTheTablesAndDrawsTheSettings)
{
    folder.setValue("Diagrama2.Senzor3.Nume =", "Camera");
    folder.setValue("Diagrama2.limita_minima =", "20");
    folder.setValue("Diagrama2.limita_maxima =", "\"137,5\"");
    folder.setValue("Calibrare.Diagrama2.Senzor3 =", "-1.5");
    folder.setValue("Diagrama1.interval_scanare =", "90");
    station.currentRow = 17;
    load(live);

    ASSERT_EQ(station.sensors.size(), 6u);
    const Sensor &last = station.sensors.back();
    EXPECT_EQ(last.key, "Diagrama2.Senzor3");
    EXPECT_EQ(last.name, "Camera");
    EXPECT_EQ(last.label, "Senzor6");
    EXPECT_EQ(last.diagram, 1);
    EXPECT_EQ(last.calibrationText, "-1,5");
    EXPECT_EQ(chart2.columnLabelOf(3), "Camera");

    for (const int row : {1, 60}) {
        EXPECT_EQ(valueAt(chart2, 1, row), 20);
        EXPECT_EQ(valueAt(chart2, 4, row), 10);
        EXPECT_EQ(valueAt(chart2, 5, row), 138);
    }
    EXPECT_EQ(chart2.valueAxisMinimum(), 20);
    EXPECT_EQ(chart2.valueAxisMaximum(), 137.5);
    EXPECT_TRUE(chart2.rowLabelsShown());
    EXPECT_EQ(station.currentRow, 1);
    EXPECT_EQ(station.nextSampling, time.now().addSecs(90));
}

TEST_F(LiveDiagramsTest, SweepClearsBeforeTheLastRow)
{
    load(live);
    for (int row = 1; row <= 59; ++row)
        sample(row);
    EXPECT_EQ(valueAt(chart2, 3, 59), 59);
    EXPECT_EQ(valueAt(chart2, 3, 60), 0) << "the last row keeps the lower graph limit";

    sample(100);
    for (ChartGrid *chart : {&chart1, &chart2}) {
        EXPECT_EQ(valueAt(*chart, 2, 1), 100);
        EXPECT_EQ(valueAt(*chart, 2, 59), 0);
        EXPECT_EQ(valueAt(*chart, 5, 59), 138) << "alarm lines stay";
        EXPECT_EQ(live.pointText(*chart, 2, 59),
                  chart->columnLabelOf(2) + " = 0\r\n07.03.2026 09:05:59")
            << "a clear leaves the moments of the former sweep";
    }
    EXPECT_EQ(station.currentRow, 2);

    sample(101);
    live.goleste_diagramele();
    EXPECT_EQ(valueAt(chart1, 2, 1), 0);
    EXPECT_EQ(chart1.row(), 1);
    EXPECT_EQ(station.currentRow, 1);
}

TEST_F(LiveDiagramsTest, ReadingsReachTheirSeriesByName)
{
    folder.setValue("Diagrama2.Senzor1.Nume =", "T1"); // like the first sensor of Diagrama1
    load(live);
    chart1.setColumn(3);
    chart1.setColumnLabel("t2"); // no sensor's name: letter case counts
    for (std::size_t i = 0; i < station.sensors.size(); ++i)
        station.sensors[i].value = 100 + static_cast<double>(i);
    live.adauga_citiri(station.sensors);

    EXPECT_EQ(valueAt(chart1, 1, 1), 100);
    EXPECT_EQ(valueAt(chart1, 2, 1), 101);
    EXPECT_EQ(valueAt(chart1, 3, 1), 0) << "keeps its value";
    EXPECT_EQ(valueAt(chart2, 1, 1), 100) << "the first sensor of that name";
    EXPECT_EQ(valueAt(chart2, 2, 1), 104);
}

/// A running cycle goes on while a message of a second load is shown.
TEST_F(LiveDiagramsTest, OldTablesHoldWhileAMessageIsOpen)
{
    load(live);
    const QByteArray shipped = folder.config();
    for (const QByteArray key : {"Diagrama1.Senzor2.Nume", "Diagrama2.Titlu"}) {
        folder.setConfig(QByteArray(shipped).replace(key, "x"));
        op.told.clear();
        op.meanwhile = [&] {
            ASSERT_EQ(station.sensors.size(), 6u) << key.toStdString();
            EXPECT_EQ(station.sensors[1].calibrationText, "0");
            EXPECT_EQ(station.Diagrame[1].alarma_maxim, 138);
        };
        load(live);
        EXPECT_EQ(op.told, QStringList("Eroare in /config/config.ini")) << key.toStdString();
    }
}
