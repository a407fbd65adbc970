// The whole program on a simulated recorder: real windows, real line, real files.

#include "acquisition/form2.h"
#include "app/main_menu.h"
#include "app/program.h"
#include "chart/chart_grid.h"
#include "jet/database.h"
#include "platform/qt_printers.h"
#include "platform/runtime_error.h"
#include "platform/shell.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tests/support/fake_operator.h"
#include "tests/support/joined_line.h"
#include "tests/support/station_folder.h"
#include "tools/trm10c_simulator/recorder_simulation.h"

#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>
#include <QtTest/QTest>
#include <gtest/gtest.h>

namespace
{

/// Goes like the system's clock, but on a day of its own and far from midnight.
class MorningClock final : public Clock
{
public:
    MorningClock() { m_watch.start(); }
    QDateTime now() const override
    {
        return wallTime(QDate(2026, 3, 7), QTime(9, 5)).addMSecs(m_watch.elapsed());
    }

private:
    QElapsedTimer m_watch;
};

class FakeShell final : public Shell
{
public:
    void open(const QString &path, Window) override
    {
        if (fails)
            throw RuntimeError(RuntimeError::FileNotFound);
        opened += path;
    }
    QStringList opened;
    bool fails = false;
};

class ProgramTest : public ::testing::Test
{
protected:
    ProgramTest()
    {
        createStorageFile(storagePath(), clock.now());
        folder.setValue("ControlPlc.CommPort =", '"' + joined.stationPort.toUtf8() + '"');
        // No time between samples: the tests wait for records, not for the clock.
        folder.setValue("Diagrama1.interval_scanare =", "0");
    }

    void start()
    {
        program = std::make_unique<Program>(Program::Environment{
            folder.path(), QLocale::c(), clock, op, shell, printers, [this] { ++ends; }});
        QObject::connect(program.get(), &Program::sampleStored, [this](int id) { lastId = id; });
        program->start();
    }

    QString storagePath() const { return folder.path() + QStringLiteral("/mdb/autoclava1.mdb"); }
    template <typename Widget>
    Widget *child(const char *name)
    {
        return program->window().findChild<Widget *>(QString::fromLatin1(name));
    }
    QAction *item(const char *name)
    {
        return menuItem(*program->window().menuBar(), QString::fromLatin1(name));
    }
    void press(Qt::Key key) { QTest::keyClick(child<QWidget>("Form1"), key); }
    bool reaches(int id)
    {
        return QTest::qWaitFor([&] { return lastId >= id; }, 60'000);
    }
    std::uint32_t storedRecords() const
    {
        const jet::Database database =
            jet::Database::open(nativePath(storagePath()), {.readOnly = true});
        EXPECT_TRUE(database.check().empty());
        return database.table(tabel::kName).recordCount();
    }
    int errorOfStart()
    {
        try {
            start();
        } catch (const RuntimeError &error) {
            return error.number();
        }
        return 0;
    }

    MorningClock clock;
    QObject timers;
    QtScheduler scheduler{timers};
    StationFolder folder;
    JoinedLine joined = joinLine();
    RecorderSimulation recorder{RecorderSettings{}, *joined.recorderEnd, clock, scheduler};
    FakeOperator op;
    FakeShell shell;
    QtPrinters printers;
    std::unique_ptr<Program> program;
    int lastId = 0;
    int ends = 0;
};

} // namespace

TEST_F(ProgramTest, KeysStartAndStopMonitoringAndSamplesReachChartAndFile)
{
    start();
    EXPECT_EQ(program->window().windowTitle(), "Monitorizare PLC v2.0.0");
    EXPECT_FALSE(program->station().monitorActive);
    EXPECT_TRUE(program->window().findChild<QObject *>("ControlPlc"));
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(65)) << "past the last row of the charts";
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor activ!");
    press(Qt::Key_F2);
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor oprit.");
    EXPECT_EQ(storedRecords(), std::uint32_t(lastId));
    const std::span<const double> series = program->station().Diagrame[1].chart->columnData(3);
    EXPECT_GT(series[0], 10);
    EXPECT_EQ(series[59], 0) << "the last row keeps the lower limit";
    EXPECT_TRUE(op.told.isEmpty()) << op.told.join('\n').toStdString();

    press(Qt::Key_F3);
    EXPECT_EQ(series[0], 0);
    EXPECT_EQ(program->station().currentRow, 1);
}

TEST_F(ProgramTest, WindowsComeAndGoWhileMonitoringGoesOn)
{
    start();
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(3));
    EXPECT_TRUE(item("SalvareImg")->isEnabled());
    child<QWidget>("Form1")->parentWidget()->close();
    EXPECT_FALSE(item("SalvareImg")->isEnabled());
    EXPECT_FALSE(item("MeniuPrint")->isEnabled());
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
    start();
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(30));
    press(Qt::Key_F2);
    const int newest = lastId;
    item("DeschidMdbCurent")->trigger();
    auto *grid = child<QTableView>("DBGrid1");
    const auto top = [&] { return grid->model()->index(0, 0).data().toString(); };
    EXPECT_EQ(top(), QString::number(newest));
    EXPECT_EQ(grid->model()->rowCount(), newest);
    EXPECT_EQ(grid->model()->index(newest - 1, 0).data().toString(), "1");
    EXPECT_EQ(grid->model()->headerData(6, Qt::Horizontal).toString(), "T6");
    EXPECT_EQ(grid->model()->headerData(7, Qt::Horizontal).toString(), "Alarma");

    program->controlCentre().StartMonCommand_Click();
    ASSERT_TRUE(reaches(newest + 1));
    program->controlCentre().StopMonCommand_Click();
    EXPECT_EQ(top(), QString::number(newest)) << "until it is refreshed";
    QTest::keyClick(grid, Qt::Key_F5);
    EXPECT_EQ(top(), QString::number(lastId));

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
    start();
    program->window().setItemEnabled("MeniuCalib", false);
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
    item("AlarmPresGraf")->trigger();
    auto *dialog = child<QDialog>("frmOptDiag2");
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(item("ExitProg")->isEnabled());
    EXPECT_FALSE(child<QWidget>("Form1Frame")->isEnabled());
    ASSERT_TRUE(reaches(lastId + 2));

    dialog->findChild<QLineEdit *>("AlarmSupText")->setText("mult");
    QTest::mouseClick(dialog->findChild<QPushButton *>("cmdApply"), Qt::LeftButton);
    auto *error = child<QWidget>("FormEroare");
    ASSERT_TRUE(error && error->isVisible());
    EXPECT_EQ(error->findChild<QLabel *>("EroareLabel")->text(),
              "Verificati corectitudinea campurilor.");
    EXPECT_FALSE(dialog->isEnabled());
    QTest::mouseClick(error->findChild<QPushButton *>("OKButton"), Qt::LeftButton);
    EXPECT_TRUE(dialog->isEnabled());

    dialog->close(); // the error window stays; it must work for the next dialog too
    item("AlarmPresGraf")->trigger();
    QTest::qWait(0);
    dialog = child<QDialog>("frmOptDiag2");
    dialog->findChild<QLineEdit *>("AlarmSupText")->setText("mult");
    QTest::mouseClick(dialog->findChild<QPushButton *>("cmdApply"), Qt::LeftButton);
    EXPECT_TRUE(error->isVisible() && error->isEnabled());
    QTest::mouseClick(error->findChild<QPushButton *>("OKButton"), Qt::LeftButton);
    EXPECT_TRUE(dialog->isEnabled());

    dialog->findChild<QLineEdit *>("AlarmSupText")->setText("20,5");
    QTest::mouseClick(dialog->findChild<QPushButton *>("cmdApply"), Qt::LeftButton);
    EXPECT_EQ(program->station().Diagrame[1].chart->columnData(5)[59], 20.5);
    dialog->close();
    EXPECT_TRUE(item("ExitProg")->isEnabled());
    EXPECT_FALSE(item("MeniuCalib")->isEnabled()) << "was disabled before";
    EXPECT_TRUE(child<QWidget>("Form1Frame")->isEnabled());
    ASSERT_TRUE(reaches(lastId + 2));
    EXPECT_TRUE(program->station().sensors[3].alarm);
}

TEST_F(ProgramTest, ArchiveBehindALockedDialogLeavesItTheFocus)
{
    start();
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
    press(Qt::Key_F2);
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
    start();
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(5));
    press(Qt::Key_F2);
    item("SalvareImg")->trigger();
    EXPECT_TRUE(QImage(folder.path() + "/img/Diagrama2_07.03.2026_09.05.bmp").width() > 100);
    EXPECT_EQ(shell.opened, QStringList({folder.path() + "/img/"}));
    QDir(folder.path() + "/img").removeRecursively();
    item("SalvareImg")->trigger();
    EXPECT_EQ(op.told, QStringList({"76 Path not found"}));

    program->archiveStorage();
    item("MeniuIstoric")->trigger();
    auto *limits = child<QDialog>("FrmIstoric");
    ASSERT_TRUE(limits);
    EXPECT_FALSE(child<QWidget>("FormAdoChartFrame")->isEnabled());
    limits->close();
    EXPECT_EQ(program->window().activeChild(), child<QWidget>("FormAdoChart"));
    child<QLineEdit>("Text1")->setText("07.03.2026");
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
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
    title->findChild<QLineEdit *>("textTitlu")->setText("Presiune (bar)");
    QTest::mouseClick(title->findChild<QPushButton *>("OKButton"), Qt::LeftButton);
    EXPECT_EQ(child<QLabel>("Label2")->text(), "Presiune (bar)");
    item("mnuNumeSenzori1")->trigger();
    auto *names = child<QDialog>("frmNumeSenzori1");
    ASSERT_TRUE(names);
    EXPECT_TRUE(names->isModal());
    names->findChild<QLineEdit *>("textNume1")->setText("Camera");
    QTest::mouseClick(names->findChild<QPushButton *>("OKButton"), Qt::LeftButton);
    EXPECT_EQ(program->station().Diagrame[0].chart->columnLabelOf(2), "Camera");
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
    EXPECT_GT(program->station().Diagrame[0].chart->columnData(2)[0], 10);
}

TEST_F(ProgramTest, StorageFileThatGoesMissingStopsMonitoring)
{
    start();
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
    QFile::remove(storagePath());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !op.told.isEmpty(); }, 20'000));
    EXPECT_EQ(op.told, QStringList({"Fisierul de stocare nu exista !!"}));
    EXPECT_FALSE(program->station().monitorActive);
    EXPECT_EQ(child<QLabel>("MonLabel")->text(), "Monitor oprit.");
}

TEST_F(ProgramTest, ClosingAsksForTheArchiveAndCancelKeepsTheProgram)
{
    start();
    press(Qt::Key_F1);
    ASSERT_TRUE(reaches(2));
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
    EXPECT_EQ(errorOfStart(), RuntimeError::TypeMismatch);
    folder.setConfig(folder.config().replace("Diagrama1.Titlu =", "Titlu ="));
    EXPECT_EQ(errorOfStart(), RuntimeError::TypeMismatch);
    EXPECT_EQ(op.told, QStringList({"Eroare in /config/config.ini"}));
    folder.setValue("ControlPlc.Settings =", "fast");
    EXPECT_EQ(errorOfStart(), RuntimeError::InvalidPropertyValue);
    QFile::remove(folder.configPath());
    EXPECT_EQ(errorOfStart(), RuntimeError::FileNotFound);
}

TEST_F(ProgramTest, PortThatDoesNotExistIsTheRuntimesErrorAndMonitoringHasEnded)
{
    folder.setValue("ControlPlc.CommPort =", "nowhere");
    start();
    try {
        program->controlCentre().StartMonCommand_Click();
        FAIL() << "no such port";
    } catch (const RuntimeError &error) {
        EXPECT_EQ(error.number(), RuntimeError::InvalidPortNumber);
    }
    EXPECT_FALSE(program->station().monitorActive);
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
