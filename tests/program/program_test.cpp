#include "acquisition/form2.h"
#include "chart/chart_grid.h"
#include "tests/program/program_rig.h"
#include "tests/support/runtime_errors.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMdiSubWindow>
#include <QTableView>
#include <QWindow>

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

TEST_F(ProgramTest, KeysStartAndStopMonitoringAndSamplesReachChartAndFile)
{
    start();
    EXPECT_EQ(program->window().windowTitle(), "Monitorizare PLC v2.1.0");
    EXPECT_FALSE(program->station().monitorActive);
    EXPECT_TRUE(program->window().findChild<QObject *>("ControlPlc"));
    hit(Qt::Key_F1);
    ASSERT_TRUE(reaches(65)) << "past the last row of the charts";
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor activ!");
    hit(Qt::Key_F2);
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
    EXPECT_TRUE(item("SalvareImg")->isEnabled());
    child<QWidget>("Form1")->parentWidget()->close();
    for (const char *name : {"MeniuTemp", "MeniuPres", "MeniuPrint", "SalvareImg"})
        EXPECT_FALSE(item(name)->isEnabled()) << name;
    item("DeschidMdbCurent")->trigger();
    ASSERT_TRUE(reaches(lastId + 3));
    item("DeschidDiag")->trigger();
    EXPECT_TRUE(item("MeniuPrint")->isEnabled());
    child<QWidget>("Form2Frame")->close();
    ASSERT_TRUE(reaches(lastId + 3));
    EXPECT_EQ(program->station().sensors.size(), 6u);
    EXPECT_GT(program->station().Diagrame[0].chart->columnData(1)[0], 10);
    program->controlCentre().StopMonCommand_Click();
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

        type(*dialog, "AlarmSupText", "mult");
        press(*dialog, "cmdApply");
        auto *error = child<QWidget>("FormEroare");
        ASSERT_TRUE(error && error->isVisible() && error->isEnabled()) << round;
        EXPECT_EQ(control<QLabel>(*error, "EroareLabel").text(),
                  "Verificati corectitudinea campurilor.");
        EXPECT_FALSE(dialog->isEnabled());
        EXPECT_EQ(error->windowHandle()->transientParent(), dialog->windowHandle()) << round;
        press(*error, "OKButton");
        EXPECT_TRUE(dialog->isEnabled()) << round;
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

TEST_F(ProgramTest, PicturesAndHistoryOfTheDay)
{
    monitor(5);
    hit(Qt::Key_F2);
    item("SalvareImg")->trigger();
    EXPECT_TRUE(QImage(folder.path() + "/img/Diagrama2_07.03.2026_09.05.bmp").width() > 100);
    EXPECT_EQ(shell.opened, QStringList({folder.path() + "/img/ minimised"}));

    program->archiveStorage();
    item("MeniuIstoric")->trigger();
    auto *limits = child<QDialog>("FrmIstoric");
    ASSERT_TRUE(limits);
    EXPECT_FALSE(child<QWidget>("FormAdoChartFrame")->isEnabled());
    limits->close();
    EXPECT_EQ(program->window().activeChild(), child<QWidget>("FormAdoChart"));
    type(program->window(), "Text1", "07.03.2026");
    press(program->window(), "Command1");
    EXPECT_TRUE(child<QLabel>("LabelStare")->text().startsWith("Diagramele la data de "))
        << child<QLabel>("LabelStare")->text().toStdString();
    program->window().resize(900, 700);
    QTest::qWait(0);
    child<QWidget>("FormAdoChartFrame")->close();
    EXPECT_FALSE(program->station().historyOpen);
}

TEST_F(ProgramTest, TitleAndNamesAreShownAtOnce)
{
    start();
    QTest::mouseDClick(child<QLabel>("Label2"), Qt::LeftButton);
    auto *title = child<QDialog>("frmTitluDiag");
    ASSERT_TRUE(title);
    type(*title, "textTitlu", "Presiune (bar)");
    press(*title, "OKButton");
    EXPECT_EQ(child<QLabel>("Label2")->text(), "Presiune (bar)");
    EXPECT_TRUE(folder.config().startsWith("Diagrama2.Titlu =,Presiune (bar)\r\n"));

    item("mnuNumeSenzori2")->trigger();
    auto *names = child<QDialog>("frmNumeSenzori2");
    ASSERT_TRUE(names);
    EXPECT_TRUE(names->isModal());
    EXPECT_EQ(control<QLabel>(*names, "labelNume2").text(), "Senzor3 :");
    type(*names, "textNume1", "Camera");
    QTest::keyClick(names, Qt::Key_Return);
    EXPECT_FALSE(names->isVisible());
    EXPECT_EQ(program->station().Diagrame[1].chart->columnLabelOf(2), "Camera");
    hit(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
    EXPECT_GT(program->station().Diagrame[1].chart->columnData(2)[0], 10);
}

TEST_F(ProgramTest, StorageFileThatGoesMissingStopsMonitoring)
{
    monitor(2);
    QFile::remove(storagePath());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !op.told.isEmpty(); }, 20'000));
    EXPECT_EQ(op.told, QStringList({"Fisierul de stocare nu exista !!"}));
    EXPECT_FALSE(program->station().monitorActive);
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor oprit.");
}

TEST_F(ProgramTest, ClosingAsksForTheArchiveAndNoLeavesTheDayInTheFile)
{
    monitor(2);
    op.answer = Operator::Answer::No;
    EXPECT_TRUE(program->window().close());
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(storedRecords(), std::uint32_t(lastId));
    EXPECT_TRUE(QDir(folder.path() + "/mdb/arhive").isEmpty(QDir::Files));
}

TEST_F(ProgramTest, ClosingAsksForTheArchiveAndCancelKeepsTheProgram)
{
    monitor(2);
    EXPECT_FALSE(program->window().close());
    item("ExitProg")->trigger();
    EXPECT_EQ(ends, 0);
    ASSERT_TRUE(reaches(lastId + 1)) << "monitoring goes on";
    EXPECT_EQ(op.asked, QStringList(2, "Doriti sa salvati arhivele acum? (recomandat doar daca nu "
                                       "veti mai reporni programul astazi)"));
    op.answer = Operator::Answer::Yes;
    EXPECT_TRUE(program->window().close());
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(program->station().monitorActive);
    EXPECT_EQ(storedRecords(), 0u);
    EXPECT_FALSE(program->window().findChild<QObject *>("ControlPlc"));
}

TEST_F(ProgramTest, UnusableSettingsEndTheStartWithTheRuntimesError)
{
    folder.setValue("Diagrama2.alarma_minim =", "zece");
    EXPECT_EQ(errorOf([this] { start(); }), RuntimeError::TypeMismatch);
    folder.setConfig(folder.config().replace("Diagrama1.Titlu =", "Titlu ="));
    EXPECT_EQ(errorOf([this] { start(); }), RuntimeError::TypeMismatch);
    EXPECT_EQ(op.told, QStringList({"Eroare in /config/config.ini"}));
    QFile::remove(folder.configPath());
    EXPECT_EQ(errorOf([this] { start(); }), RuntimeError::FileNotFound);
}

#ifndef Q_OS_WIN // where the port is no object of the toolkit
TEST_F(ProgramTest, LineIsSetAsTheSettingsSay)
{
    folder.setValue("ControlPlc.Settings =", "\"19200,e,7,2\"");
    start();
    const auto *port = child<QObject>("ControlPlc");
    for (const auto &[property, value] :
         {std::pair("baudRate", 19200), {"parity", 2}, {"dataBits", 7}, {"stopBits", 2}})
        EXPECT_EQ(port->property(property).toInt(), value) << property;
}
#endif

TEST_F(ProgramTest, UnusablePortIsReportedWhenMonitoringStartsAndEndsIt)
{
    const struct {
        const char *key, *value;
        int error;
    } cases[] = {{"ControlPlc.CommPort =", "nowhere", RuntimeError::InvalidPortNumber},
                 {"ControlPlc.CommPort =", "0", RuntimeError::InvalidPortNumber},
                 {"ControlPlc.Settings =", "fast", RuntimeError::InvalidPropertyValue}};
    for (const auto &c : cases) {
        folder.setValue(c.key, c.value);
        ASSERT_EQ(errorOf([this] { start(); }), 0) << c.value;
        EXPECT_EQ(errorOf([this] { program->controlCentre().StartMonCommand_Click(); }), c.error)
            << c.value;
        EXPECT_FALSE(program->station().monitorActive);
    }
}

TEST_F(ProgramTest, FoldersAndHelpOpenInTheSystemsPrograms)
{
    start();
    item("DeschidMdbArhiva")->trigger();
    item("DocProg")->trigger();
    EXPECT_EQ(shell.opened,
              QStringList({folder.path() + "/mdb/arhive/", folder.path() + "/Doc/help.doc"}));
    shell.fails = true;
    item("DocProg")->trigger();
    EXPECT_EQ(op.told, QStringList({"File not found"}));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
}
