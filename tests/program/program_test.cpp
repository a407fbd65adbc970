#include "acquisition/form2.h"
#include "chart/chart_grid.h"
#include "tests/program/program_rig.h"
#include "tests/support/runtime_errors.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QScreen>
#include <QTableView>
#include <QWindow>
#include <qcustomplot.h>

class ProgramTest : public ProgramRig
{
protected:
    /// Writes the alarm column of a record, as another program might.
    void mark(int id, const char16_t *alarm)
    {
        jet::Database database = jet::Database::open(nativePath(storagePath()));
        jet::Cursor records = database.table(tabel::kName).byIndex(tabel::kPrimaryIndex);
        const jet::Value key = id;
        ASSERT_TRUE(records.seek({&key, 1}));
        records.update({{tabel::kAlarma, jet::Text(alarm)}});
    }
};

TEST_F(ProgramTest, KeysAndMouseCommandAndSamplesReachChartAndFile)
{
    start();
    EXPECT_EQ(program->window().windowTitle(), "Monitorizare PLC v2.1.0");
    EXPECT_TRUE(program->window().findChild<QObject *>("ControlPlc"));
    QWidget &plot = *child<QWidget>("MSChart2")->findChild<QCustomPlot *>();
    const QPoint point(60, 40);
    QTest::mouseClick(&plot, Qt::LeftButton, {}, point);
    EXPECT_FALSE(QApplication::activePopupWidget());
    QTest::mouseClick(&plot, Qt::RightButton, {}, point);
    EXPECT_EQ(QApplication::activePopupWidget(), item("MeniuFisier")->menu());
    EXPECT_EQ(item("MeniuFisier")->menu()->pos(), plot.mapToGlobal(point));
    item("MeniuFisier")->menu()->close();
    QKeyEvent held(QEvent::KeyRelease, Qt::Key_F1, {}, {}, true);
    QCoreApplication::sendEvent(&plot, &held);
    EXPECT_FALSE(program->station().monitorActive) << "letting the key go counts";
    QTest::keyClick(&plot, Qt::Key_F1);
    ASSERT_TRUE(reaches(65)) << "past the last row of the charts";
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor activ!");
    QTest::keyClick(child<QWidget>("CentruControlCommand"), Qt::Key_F2);
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor oprit.");
    EXPECT_EQ(storedRecords(), std::uint32_t(lastId));
    const std::span<const double> series = program->station().Diagrame[1].chart->columnData(3);
    EXPECT_GT(series[0], 10);
    EXPECT_EQ(series[59], 0) << "the last row keeps the lower limit";
    EXPECT_TRUE(op.told.isEmpty()) << op.told.join('\n').toStdString();

    hit(Qt::Key_F3);
    EXPECT_EQ(series[0], 0);
    EXPECT_EQ(program->station().currentRow, 1);

    hit(Qt::Key_F1);
    program->halt();
    EXPECT_FALSE(program->station().monitorActive);
}

TEST_F(ProgramTest, WindowsComeAndGoWhileMonitoringGoesOn)
{
    monitor(3);
    ChartGrid &chart = *program->station().Diagrame[0].chart;
    EXPECT_TRUE(item("SalvareImg")->isEnabled());
    child<QWidget>("Form1Frame")->close();
    EXPECT_FALSE(program->station().diagramsOpen);
    for (const char *name : {"MeniuTemp", "MeniuPres", "MeniuPrint", "SalvareImg"})
        EXPECT_FALSE(item(name)->isEnabled()) << name;
    item("DeschidMdbCurent")->trigger();
    ASSERT_TRUE(reaches(lastId + 3));
    chart.setValueAxisMaximum(99); // a dialog goes on with the diagrams
    item("DeschidDiag")->trigger();
    EXPECT_EQ(chart.valueAxisMaximum(), 150);
    EXPECT_TRUE(item("MeniuPrint")->isEnabled());

    press(program->window(), "CentruControlCommand");
    child<QWidget>("Form2Frame")->move(120, 90);
    child<QWidget>("Form2Frame")->close();
    ASSERT_TRUE(reaches(lastId + 3));
    EXPECT_EQ(program->station().sensors.size(), 6u);
    EXPECT_GT(chart.columnData(1)[0], 10);
    press(program->window(), "CentruControlCommand");
    EXPECT_EQ(child<QWidget>("Form2Frame")->pos(), QPoint(120, 90));
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor activ!");
    const struct {
        const char *button, *caption, *state;
        QColor colour;
    } rows[] = {{"StopMonCommand", "Stop Monitorizare", "Monitor oprit.", "red"},
                {"StartMonCommand", "Start Monitorizare", "Monitor activ!", "lime"},
                {"InitDiagCommand", "Initializare diagrame", "Monitor oprit.", "red"}};
    for (const auto &row : rows) {
        auto *button = child<QPushButton>(row.button);
        EXPECT_EQ(button->text(), row.caption);
        QTest::keyClick(button, Qt::Key_Return);
        const auto *label = child<QLabel>("MonLabel");
        EXPECT_EQ(label->text(), row.state);
        EXPECT_EQ(label->palette().color(label->backgroundRole()), row.colour);
    }
    EXPECT_EQ(chart.columnData(1)[0], 0);
    EXPECT_EQ(storedRecords(), std::uint32_t(lastId));
}

TEST_F(ProgramTest, BrowserShowsTheNewestFirstAndGivesWayToTheArchive)
{
    monitor(30);
    hit(Qt::Key_F2);
    const int newest = lastId;
    mark(newest, u"Yes");
    mark(newest - 1, u"No");
    item("DeschidMdbCurent")->trigger();
    auto *grid = child<QTableView>("DBGrid1");
    const auto top = [&] { return grid->model()->index(0, 0).data().toString(); };
    EXPECT_EQ(top(), QString::number(newest));
    EXPECT_EQ(grid->model()->rowCount(), newest);
    EXPECT_EQ(grid->model()->index(newest - 1, 0).data().toString(), "1");
    EXPECT_TRUE(grid->model()->index(0, 0).data(Qt::BackgroundRole).isValid()) << "an alarm";
    EXPECT_FALSE(grid->model()->index(1, 0).data(Qt::BackgroundRole).isValid());
    EXPECT_EQ(grid->model()->headerData(6, Qt::Horizontal).toString(), "T6");
    EXPECT_EQ(grid->model()->headerData(7, Qt::Horizontal).toString(), "Alarma");

    for (const bool byKey : {true, false}) {
        const QString shown = QString::number(lastId);
        program->controlCentre().StartMonCommand_Click();
        ASSERT_TRUE(reaches(lastId + 1));
        program->controlCentre().StopMonCommand_Click();
        EXPECT_EQ(top(), shown) << "until it is refreshed";
        byKey ? QTest::keyClick(grid, Qt::Key_F5) : press(program->window(), "cmdRefresh");
        EXPECT_EQ(top(), QString::number(lastId));
    }

    item("SalvareArh")->trigger();
    EXPECT_TRUE(op.told.isEmpty()) << op.told.join('\n').toStdString();
    EXPECT_EQ(storedRecords(), 0u);
    EXPECT_TRUE(program->station().FormMdbDeschis);
    QTest::qWait(0); // the frame of the closed browser goes
    EXPECT_TRUE(program->station().FormMdbDeschis);
    EXPECT_EQ(child<QTableView>("DBGrid1")->model()->rowCount(), 0);
    EXPECT_TRUE(QFile::exists(folder.path() + "/mdb/arhive/arh_07.03.2026_autoclava1.mdb"));
    item("SalvareArh")->trigger();
    EXPECT_EQ(op.told, QStringList("Baza de date autoclava1.mdb e goala!"));
    EXPECT_FALSE(program->station().FormMdbDeschis);
}

TEST_F(ProgramTest, DayArchivesItselfAtItsEndWhileMonitoringGoesOn)
{
    monitor(3);
    clock.setClock(wallTime(QDate(2026, 3, 7), QTime(23, 59, 50)));
    const QString archive = folder.path() + "/mdb/arhive/arh_07.03.2026_autoclava1.mdb";
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(archive); }, 60'000));
    lastId = 0;
    ASSERT_TRUE(reaches(3)) << "the new day counts from 1";
    hit(Qt::Key_F2);
    EXPECT_EQ(storedRecords(), std::uint32_t(lastId));
    EXPECT_TRUE(op.told.isEmpty()) << op.told.join('\n').toStdString();
}

TEST_F(ProgramTest, BrowserThatFailsMayBeClosedBehindItsOwnMessage)
{
    start();
    QFile::resize(storagePath(), 5 * 4096);
    op.meanwhile = [&] { // as the archive of the day's end does
        op.meanwhile = nullptr;
        item("SalvareArh")->trigger();
        QTest::qWait(0);
    };
    item("DeschidMdbCurent")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return op.told.size() == 2; }, 20'000));
    EXPECT_TRUE(op.told[0].startsWith("3049 ")) << op.told[0].toStdString();
    EXPECT_FALSE(program->station().FormMdbDeschis);
}

TEST_F(ProgramTest, LockedDialogDisablesTheRestWhileMonitoringGoesOn)
{
    monitor(2);
    program->window().setItemEnabled("MeniuCalib", false);
    item("DespreProg")->trigger();
    auto *about = child<QDialog>("frmAbout");
    child<QWidget>("Form1Frame")->showMaximized(); // its buttons then stand in the menu bar
    QDialog *dialog = nullptr;
    for (const char *round : {"first", "again, as the error window stays"}) {
        item("AlarmPresGraf")->trigger();
        QTest::qWait(0);
        dialog = child<QDialog>("frmOptDiag2");
        ASSERT_TRUE(dialog) << round;
        for (const QAction *action : menuItems(*program->window().menuBar()))
            EXPECT_FALSE(action->isEnabled()) << action->objectName().toStdString();
        EXPECT_FALSE(child<QWidget>("Form1Frame")->isEnabled());
        EXPECT_FALSE(about->isEnabled());
        EXPECT_FALSE(about->close()) << "as by its title bar";
        EXPECT_FALSE(child<QWidget>("Form1Frame")->close());
        EXPECT_FALSE(child<QWidget>("Form2Frame")->close());
        EXPECT_FALSE(program->window().menuBar()->cornerWidget(Qt::TopRightCorner)->isEnabled());
        ASSERT_TRUE(reaches(lastId + 2));

        const QString kept = textOf(*dialog, "AlarmSupText");
        for (const bool byButton : {true, false}) {
            type(*dialog, "AlarmSupText", "mult");
            press(*dialog, "cmdOK");
            auto *error = child<QWidget>("FormEroare");
            ASSERT_TRUE(error && error->isVisible() && error->isEnabled()) << round;
            EXPECT_EQ(error->windowTitle(), dialog->windowTitle());
            const QPoint centre = error->screen()->geometry().center();
            EXPECT_LE((error->geometry().center() - centre).manhattanLength(), 8);
            EXPECT_EQ(control<QLabel>(*error, "EroareLabel").text(),
                      "Verificati corectitudinea campurilor.");
            EXPECT_EQ(error->windowHandle()->transientParent(), dialog->windowHandle()) << round;
            EXPECT_FALSE(dialog->isEnabled());
            EXPECT_FALSE(dialog->close()) << "as by the title bar";
            byButton ? press(*error, "OKButton") : (void)error->close();
            EXPECT_FALSE(error->isVisible());
            EXPECT_TRUE(dialog->isEnabled()) << round;
            EXPECT_EQ(textOf(*dialog, "AlarmSupText"), kept);
            EXPECT_EQ(dialog->focusWidget()->objectName(), "AlarmSupText");
        }
        type(*dialog, "AlarmSupText", "20,5");
        press(*dialog, "cmdApply");
        dialog->close();
    }
    EXPECT_EQ(program->station().Diagrame[1].chart->columnData(5)[59], 20.5);
    EXPECT_TRUE(item("ExitProg")->isEnabled());
    EXPECT_FALSE(item("MeniuCalib")->isEnabled()) << "was disabled before";
    EXPECT_TRUE(program->window().menuBar()->cornerWidget(Qt::TopRightCorner)->isEnabled());
    EXPECT_TRUE(child<QWidget>("Form1Frame")->isEnabled());
    EXPECT_TRUE(about->close());
    ASSERT_TRUE(reaches(lastId + 2));
    EXPECT_TRUE(program->station().sensors[3].alarm);
}

TEST_F(ProgramTest, ArchiveBehindALockedDialogLeavesItTheFocus)
{
    monitor(2);
    hit(Qt::Key_F2);
    item("DeschidMdbCurent")->trigger();
    item("MeniuCalib")->trigger();
    ASSERT_TRUE(child<QDialog>("FormCalibrare"));
    program->archiveStorage();
    QTest::qWait(0);
    EXPECT_TRUE(program->station().FormMdbDeschis);
    EXPECT_FALSE(child<QWidget>("FormMdbFrame")->isEnabled());
    child<QDialog>("FormCalibrare")->close();
    EXPECT_TRUE(child<QWidget>("FormMdbFrame")->isEnabled());
}

TEST_F(ProgramTest, TitleAndNamesAreShownAtOnce)
{
    folder.setValue("Diagrama1.Titlu =", "Camera umeda");
    start();
    EXPECT_EQ(child<QLabel>("Label1")->text(), "Camera umeda");
    QTest::mouseDClick(child<QLabel>("Label2"), Qt::LeftButton);
    auto *title = child<QDialog>("frmTitluDiag");
    ASSERT_TRUE(title);
    type(*title, "textTitlu", "Presiune (bar)");
    press(*title, "OKButton");
    const QLabel &label = *child<QLabel>("Label2");
    EXPECT_EQ(label.text(), "Presiune (bar)");
    EXPECT_EQ(label.width(), label.sizeHint().width());
    EXPECT_NEAR(label.geometry().center().x(), child<QWidget>("Form1")->rect().center().x(), 1);
    EXPECT_TRUE(folder.config().startsWith("Diagrama2.Titlu =,Presiune (bar)\r\n"));

    item("mnuNumeSenzori2")->trigger();
    auto *names = child<QDialog>("frmNumeSenzori2");
    ASSERT_TRUE(names);
    EXPECT_TRUE(names->isModal());
    EXPECT_EQ(control<QLabel>(*names, "labelNume2").text(), "Senzor3 :");
    control<QLineEdit>(*names, "textNume0").clear();
    type(*names, "textNume1", "abur, sus");
    type(*names, "textNume2", "2,5");
    QTest::keyClick(names, Qt::Key_Return);
    EXPECT_FALSE(names->isVisible());
    EXPECT_TRUE(folder.config().startsWith("Diagrama2.Senzor1.Nume =,\r\n"
                                           "Diagrama2.Senzor2.Nume =,abur, sus\r\n"
                                           "Diagrama2.Senzor3.Nume =,2.5\r\n"));
    const Diagrama &diagram = program->station().Diagrame[1];
    EXPECT_EQ(diagram.Nume, QStringList({"", "abur, sus", "2.5"}));
    EXPECT_EQ(diagram.chart->columnLabelOf(3), "2.5");
    hit(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
    for (const int column : {1, 2, 3})
        EXPECT_GT(diagram.chart->columnData(column)[0], 10) << "readings keep reaching the series";
}

TEST_F(ProgramTest, ClosingAsksWhetherToArchive)
{
    monitor(2);
    EXPECT_FALSE(program->window().close());
    item("ExitProg")->trigger();
    EXPECT_EQ(ends, 0);
    ASSERT_TRUE(reaches(lastId + 1)) << "monitoring goes on";
    EXPECT_EQ(op.asked, QStringList(2, "Doriti sa salvati arhivele acum? (recomandat doar daca nu "
                                       "veti mai reporni programul astazi)"));

    op.answer = Operator::Answer::No;
    EXPECT_TRUE(program->window().close());
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(program->station().monitorActive);
    EXPECT_FALSE(program->window().findChild<QObject *>("ControlPlc"));
    EXPECT_EQ(storedRecords(), std::uint32_t(lastId));
    EXPECT_TRUE(QDir(folder.path() + "/mdb/arhive").isEmpty(QDir::Files));

    op.answer = Operator::Answer::Yes;
    monitor(lastId + 1);
    EXPECT_TRUE(program->window().close());
    EXPECT_EQ(ends, 2);
    EXPECT_EQ(storedRecords(), 0u);
}

TEST_F(ProgramTest, UnusableSettingsEndTheStartWithTheRuntimesError)
{
    const struct {
        const char *key, *value;
        int error;
    } cases[] = {{"Diagrama2.interval_scanare =", "32768", RuntimeError::Overflow},
                 {"Diagrama2.alarma_minim =", "zece", RuntimeError::TypeMismatch},
                 {"Diagrama1.alarma_minim =", "", RuntimeError::TypeMismatch}};
    for (const auto &c : cases) {
        folder.setValue(c.key, c.value);
        EXPECT_EQ(errorOf([this] { start(); }), c.error) << c.value;
        EXPECT_TRUE(op.told.isEmpty());
    }
    folder.setConfig(folder.config().replace("Diagrama1.Titlu =", "Titlu ="));
    EXPECT_EQ(errorOf([this] { start(); }), RuntimeError::TypeMismatch);
    EXPECT_EQ(op.told, QStringList({"Eroare in /config/config.ini"}));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
    QFile::remove(folder.configPath());
    EXPECT_EQ(errorOf([this] { start(); }), RuntimeError::FileNotFound);
}

#ifndef Q_OS_WIN // where the port is no object of the toolkit
TEST_F(ProgramTest, LineIsSetAsTheSettingsSay)
{
    folder.setValue("ControlPlc.Settings =", "\"19200, E, 7, 1.5\"");
    start();
    const auto *port = child<QObject>("ControlPlc");
    for (const auto &[property, value] : // 3: one and a half
         {std::pair("baudRate", 19200), {"parity", 2}, {"dataBits", 7}, {"stopBits", 3}})
        EXPECT_EQ(port->property(property).toInt(), value) << property;
}
#endif

TEST_F(ProgramTest, UnusablePortIsReportedWhenMonitoringStartsAndEndsIt)
{
    constexpr int kBadPort = RuntimeError::InvalidPortNumber;
    constexpr int kBadValue = RuntimeError::InvalidPropertyValue;
    const struct {
        const char *key, *value;
        int error;
    } cases[] = {{"ControlPlc.CommPort =", "nowhere", kBadPort},
                 {"ControlPlc.CommPort =", "0", kBadPort},
                 {"ControlPlc.Settings =", "fast", kBadValue},
                 {"ControlPlc.Settings =", "\"9600,n,8\"", kBadValue},
                 {"ControlPlc.Settings =", "\"a,n,8,1\"", kBadValue},
                 {"ControlPlc.Settings =", "\"9600,x,8,1\"", kBadValue},
                 {"ControlPlc.Settings =", "\"9600,n,9,1\"", kBadValue},
                 {"ControlPlc.Settings =", "\"9600,n,8,3\"", kBadValue}};
    for (const auto &c : cases) {
        folder.setValue(c.key, c.value);
        ASSERT_EQ(errorOf([this] { start(); }), 0) << c.value;
        EXPECT_EQ(errorOf([this] { program->controlCentre().StartMonCommand_Click(); }), c.error)
            << c.value;
        EXPECT_FALSE(program->station().monitorActive);
    }
}
