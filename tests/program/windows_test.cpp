// Every window as the operator gets it: opened by its own command, then looked at whole.

#include "chart/chart_grid.h"
#include "chart/chart_view.h"
#include "tests/program/program_rig.h"
#include "tests/program/window_walker.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTabWidget>
#include <qcustomplot.h>

namespace
{

void settle()
{
    QTest::qWait(0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qWait(0);
}

QList<QDialog *> openDialogs()
{
    QList<QDialog *> dialogs;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (auto *dialog = qobject_cast<QDialog *>(window); dialog && dialog->isVisible())
            dialogs += dialog;
    return dialogs;
}

class WindowsTest : public ProgramRig
{
protected:
    /// Some samples in the storage file, none being taken.
    void startWithSamples()
    {
        monitor(5);
        hit(Qt::Key_F2);
        lastId = 0;
    }

    void choose(const char *name)
    {
        item(name)->trigger();
        settle();
    }

    void closeDialogs()
    {
        for (QDialog *dialog : openDialogs())
            dialog->close();
        settle();
    }

    /// By the key that changes nothing, whatever was typed.
    void escapeDialogs()
    {
        for (QDialog *dialog : openDialogs()) {
            for (QLineEdit *box : dialog->findChildren<QLineEdit *>())
                box->setText("3");
            QTest::keyClick(dialog, Qt::Key_Escape);
        }
        settle();
    }

    QMdiSubWindow *frame(const char *form)
    {
        return child<QMdiSubWindow>((std::string(form) + "Frame").c_str());
    }

    bool isLocked()
    {
        const QList<QAction *> items = menuItems(*program->window().menuBar());
        return std::none_of(items.begin(), items.end(),
                            [](const QAction *action) { return action->isEnabled(); });
    }

    /// What is in front, open and said, in words.
    QString whatIsSeen()
    {
        QStringList seen{program->window().activeChild()->objectName()};
        for (const QDialog *dialog : openDialogs()) {
            seen += dialog->objectName() + (dialog->isModal() ? " modal"
                                            : isLocked()      ? " locked"
                                                              : "");
            if (const auto *tabs = dialog->findChild<QTabWidget *>())
                seen += tabs->tabText(tabs->currentIndex());
        }
        for (const QString &path : std::exchange(shell.opened, {}))
            seen += "opens " + QDir(folder.path()).relativeFilePath(path);
        for (const QString &text : std::exchange(op.told, {}))
            seen += "says " + text;
        for (const QString &text : std::exchange(op.asked, {}))
            seen += "asks " + text.left(32);
        return seen.join(", ");
    }
};

} // namespace

TEST_F(WindowsTest, EveryMenuItemHasItsEffect)
{
    // Chosen with the browser in front, or with the diagrams where the browser itself is chosen.
    const struct {
        const char *item, *caption, *seen;
    } rows[] = {
        {"MeniuFisier", "Fisiere", nullptr},
        {"DeschidMdbCurent", "&Deschide baze date curente", "FormMdb"},
        {"DeschidMdbArhiva", "Deschide &arhiva", "FormMdb, opens mdb/arhive"},
        {"DeschidDiag", "Deschide diag&ramele", "Form1"},
        {"DeschidGenerator", "Deschide &generator diagrame", "FormAdoChart"},
        {"DeschidCentruControl", "Deschide &centrul de control", "Form2"},
        {"SalvareArh", "&Salvare arhive baze de date", "Form1"}, // in front of the browser again
        {"SalvareImg", "Salvare &imagine diagrame", "FormMdb, opens img/ minimised"},
        {"ExitProg", "&Iesire", "FormMdb, asks Doriti sa salvati arhivele acum?"},
        {"MeniuTemp", "Diagrama Senzori 1,2,3.", nullptr},
        {"LimitTempGraf", "Setare &limite grafic", "Form1, frmOptDiag1 locked, Limite grafic"},
        {"AlarmTempGraf", "Setare &alarme", "Form1, frmOptDiag1 locked, Alarme"},
        {"ScanTempGraf", "Setare &optiuni scanare", "Form1, frmOptDiag1 locked, Optiuni scanare"},
        {"mnuNumeSenzori1", "Setare &nume senzori", "FormMdb, frmNumeSenzori1 modal"},
        {"MeniuPres", "Diagrama Senzori 4,5,6.", nullptr},
        {"LimitPresGraf", "Setare &limite grafic", "Form1, frmOptDiag2 locked, Limite grafic"},
        {"AlarmPresGraf", "Setare &alarme", "Form1, frmOptDiag2 locked, Alarme"},
        {"ScanPresGraf", "Setare &optiuni scanare", "Form1, frmOptDiag2 locked, Optiuni scanare"},
        {"mnuNumeSenzori2", "Setare &nume senzori", "FormMdb, frmNumeSenzori2 modal"},
        {"MeniuIstoric", "Istoric Diagrame", "FormAdoChart, FrmIstoric locked"},
        {"MeniuCalib", "Calibrare senzori", "FormMdb, FormCalibrare locked"},
        {"MeniuPrint", "Printare", nullptr},
        {"PrintDiag", "&Printare diagrame",
         "FormMdb, says Nu am reusit sa detectez imprimante in sistem!"},
        {"MeniuDespre", "Help", nullptr},
        {"DocProg", "&Documentatie", "FormMdb, opens Doc/help.doc"},
        {"DespreProg", "Despre &program", "FormMdb, frmAbout"},
    };
    startWithSamples();
    const QByteArray shipped = folder.config();
    const QList<QAction *> items = menuItems(*program->window().menuBar());
    ASSERT_EQ(items.size(), qsizetype(std::size(rows)));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto &row = rows[i];
        QAction *action = items[qsizetype(i)];
        EXPECT_EQ(action->objectName(), row.item);
        EXPECT_EQ(action->text(), row.caption) << row.item;
        EXPECT_TRUE(action->isEnabled()) << row.item;
        EXPECT_EQ(action->menu() != nullptr, row.seen == nullptr) << row.item;
        if (!row.seen)
            continue;
        choose(qstrcmp(row.item, "DeschidMdbCurent") == 0 ? "DeschidDiag" : "DeschidMdbCurent");
        choose(row.item);
        EXPECT_EQ(whatIsSeen().toStdString(), row.seen) << row.item;
        const QWidget *inFront = program->window().activeChild();
        escapeDialogs();
        EXPECT_EQ(program->window().activeChild(), inFront) << row.item;
        const QWidget *focus = program->window().focusWidget();
        EXPECT_TRUE(focus == inFront || inFront->isAncestorOf(focus)) << row.item;
    }
    EXPECT_FALSE(child<QDialog>("frmAbout")) << "is gone once it is closed";
    EXPECT_EQ(folder.config(), shipped);
    EXPECT_EQ(program->station().Diagrame[1].limita_maxima, 150);
    EXPECT_EQ(program->station().Istoric[1].limita_maxima, 150);
    EXPECT_TRUE(QFile::exists(folder.path() + "/mdb/arhive/arh_07.03.2026_autoclava1.mdb"));
    EXPECT_TRUE(QFile::exists(folder.path() + "/img/Diagrama1_07.03.2026_09.05.bmp"));
    EXPECT_EQ(ends, 0) << "the question was answered with Cancel";
    shell.fails = true;
    choose("DocProg");
    EXPECT_EQ(op.told, QStringList("File not found"));
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);

    program->window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&program->window()));
    QTest::keyClick(&program->window(), Qt::Key_F10);
    for (const Qt::Key key :
         {Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Return})
        QTest::keyClick(QApplication::activePopupWidget() ? QApplication::activePopupWidget()
                                                          : QApplication::focusWidget(),
                        key);
    ASSERT_EQ(openDialogs().size(), 1);
    EXPECT_EQ(openDialogs().front()->objectName(), "FormCalibrare") << "by the keyboard";
    closeDialogs();
}

TEST_F(WindowsTest, BrowserKeepsThePlaceAndSizeThatItWasGiven)
{
    startWithSamples();
    program->window().resize(1280, 900);
    settle();
    choose("DeschidMdbCurent");
    EXPECT_GE(child<QWidget>("DBGrid1")->height(), 300) << "as it opens";
    const QRect given(40, 30, 500, 310);
    frame("FormMdb")->setGeometry(given);
    choose("SalvareArh");
    EXPECT_EQ(frame("FormMdb")->geometry(), given) << "after the archive";
    frame("FormMdb")->close();
    settle();
    choose("DeschidMdbCurent");
    EXPECT_EQ(frame("FormMdb")->geometry(), given) << "chosen again";
    frame("FormMdb")->move(-150, 30);
    choose("DeschidMdbCurent");
    EXPECT_EQ(frame("FormMdb")->x(), -150) << "partly out, within reach";
    frame("FormMdb")->move(-480, -30);
    choose("DeschidMdbCurent");
    EXPECT_EQ(frame("FormMdb")->pos(), QPoint()) << "brought back";
    program->window().resize(420, 300);
    settle();
    EXPECT_EQ(faultsOf(*frame("FormMdb")), QStringList());
}

/// A message of the settings comes while a window loads: the main window may change meanwhile.
TEST_F(WindowsTest, WindowsFillTheMainWindowAfterAMessageOfTheirLoad)
{
    const char *loading = "Form1";
    folder.setConfig(folder.config().replace("Diagrama2.Senzor3.Nume =", "Altceva ="));
    op.meanwhile = [&] {
        EXPECT_FALSE(frame(loading)->isVisible()) << "half done";
        program->window().showNormal();
        program->window().resize(program->window().width() == 1100 ? 1000 : 1100, 800);
        settle();
    };
    start();
    loading = "FormAdoChart";
    folder.setConfig(folder.config().replace("Istoric.Diagrama2.", "Altceva."));
    choose("DeschidGenerator");
    EXPECT_EQ(op.told, QStringList(2, "Eroare in /config/config.ini"));
    for (const char *form : {"Form1", "FormAdoChart"}) {
        EXPECT_EQ(frame(form)->size(), program->window().innerSize() - QSize(4, 71)) << form;
        EXPECT_EQ(faultsOf(*frame(form)), QStringList());
    }
    frame("FormAdoChart")->close();
    settle();
    EXPECT_FALSE(program->station().historyOpen);
    program->window().resize(900, 700); // with no history to lay out
    settle();
}

TEST_F(WindowsTest, AMinimisedWindowStaysSoBehindADialogAndAnArchive)
{
    startWithSamples();
    choose("DeschidMdbCurent");
    choose("DeschidDiag");
    frame("Form1")->showMinimized();
    choose("MeniuCalib");
    closeDialogs();
    choose("SalvareArh");
    EXPECT_TRUE(frame("Form1")->isMinimized());
    choose("DeschidDiag");
    EXPECT_FALSE(frame("Form1")->isMinimized()) << "by its command";
    frame("Form1")->close();
    choose("DeschidDiag");
    EXPECT_TRUE(program->station().diagramsOpen) << "a new one while the old one goes";
}

namespace
{

struct Look {
    const char *name;
    double letters; ///< against the system's usual size
    bool isDark;
    QSize mainWindow;
};

std::ostream &operator<<(std::ostream &out, const Look &look)
{
    return out << look.name;
}

/// Windows with other letters and colours; everything as before afterwards.
class LookTest : public WindowsTest, public ::testing::WithParamInterface<Look>
{
protected:
    LookTest() : m_font(QApplication::font()), m_colours(QApplication::palette())
    {
        QFont font = m_font;
        font.setPointSizeF(font.pointSizeF() * GetParam().letters);
        QApplication::setFont(font);
        if (GetParam().isDark)
            QApplication::setPalette(QPalette(QColor(0x35, 0x35, 0x35), QColor(0x2A, 0x2A, 0x2A)));
        folder.setValue("Diagrama1.limita_maxima =", "1500");
        folder.setValue("Diagrama2.Senzor2.Nume =", "Camera uscata");
    }
    ~LookTest() override
    {
        program.reset();
        QApplication::setFont(m_font);
        QApplication::setPalette(m_colours);
    }

    void openAll()
    {
        startWithSamples();
        program->window().showNormal();
        program->window().resize(GetParam().mainWindow);
        settle();
        choose("SalvareArh");
        hit(Qt::Key_F1); // rows for the browser, too
        ASSERT_TRUE(reaches(5));
        hit(Qt::Key_F2);
        choose("DeschidGenerator");
        type(program->window(), "Text1", "07.03.2026");
        press(program->window(), "Command1");
        EXPECT_EQ(child<QLabel>("LabelStare")->text(), "Diagramele la data de 07.03.2026");
        choose("DeschidMdbCurent");
        choose("DeschidCentruControl");
        choose("DeschidDiag");
        pickAPoint("MSChart1", "DateLabel1_0");
        pickAPoint("MSChart2", "DateLabel1_1");
        pickAPoint("MSChartAdo2", "LabelDate");
        expectInLine("MSChart1", "MSChart2");
        expectInLine("MSChartAdo1", "MSChartAdo2");
    }

    /// Plots one above the other share their edges, whatever stands beside them.
    void expectInLine(const char *upper, const char *lower)
    {
        const auto edges = [this](const char *chart) {
            const auto *plot = child<QWidget>(chart)->findChild<QCustomPlot *>();
            return std::pair(plot->axisRect()->left(), plot->axisRect()->right());
        };
        EXPECT_TRUE(QTest::qWaitFor([&] { return edges(upper) == edges(lower); })) << upper;
    }

    /// Its text is shown below the charts.
    void pickAPoint(const char *chart, const char *label)
    {
        auto &view = *child<ChartView>(chart);
        auto &plot = *view.findChild<QCustomPlot *>();
        plot.replot();
        const double value = view.grid().columnData(1)[2];
        QTest::mouseClick(
            &plot, Qt::LeftButton, {},
            QPointF(plot.xAxis->coordToPixel(3), plot.yAxis->coordToPixel(value)).toPoint());
        EXPECT_TRUE(child<QLabel>(label)->text().contains(" = "));
    }

    /// Looks at the main window's bar, at the windows in it and at those of their own.
    void expectSound(const QString &state)
    {
        settle();
        QList<QWidget *> frames;
        for (QWidget *window : QApplication::topLevelWidgets())
            if (window->isVisible())
                frames += window;
        for (QMdiSubWindow *frame : program->window().findChildren<QMdiSubWindow *>())
            if (frame->isVisible() && !frame->isMinimized())
                frames += frame;
        for (const QWidget *frame : frames)
            for (const QString &fault : faultsOf(*frame))
                ADD_FAILURE() << state.toStdString() << ": in " << frame->objectName().toStdString()
                              << ' ' << fault.toStdString();
    }

private:
    QFont m_font;
    QPalette m_colours;
};

} // namespace

TEST_P(LookTest, EveryWindowIsSoundAsItIsOpened)
{
    openAll();
    expectSound("windows of the main window");
    for (const char *command : {"LimitTempGraf", "AlarmTempGraf", "ScanTempGraf", "LimitPresGraf",
                                "AlarmPresGraf", "ScanPresGraf", "mnuNumeSenzori1",
                                "mnuNumeSenzori2", "MeniuIstoric", "MeniuCalib", "DespreProg"}) {
        choose(command);
        ASSERT_EQ(openDialogs().size(), 1) << command;
        expectSound(command);
        closeDialogs();
    }
    choose("DeschidDiag");
    QTest::mouseDClick(child<QLabel>("Label1"), Qt::LeftButton);
    expectSound("title");
    closeDialogs();

    choose("ScanPresGraf");
    type(*openDialogs().front(), "ScanText", "mult");
    press(*openDialogs().front(), "cmdApply");
    expectSound("error window");
    press(*child<QWidget>("FormEroare"), "OKButton");
    closeDialogs();
}

TEST_P(LookTest, EveryWindowIsSoundAfterWhatHappensToIt)
{
    openAll();
    for (const char *form : {"Form1", "FormMdb", "FormAdoChart", "Form2"}) {
        for (const Qt::WindowState state : {Qt::WindowMinimized, Qt::WindowMaximized}) {
            const QString what = QString("%1 %2").arg(form).arg(state);
            frame(form)->setWindowState(state);
            settle();
            program->window().resize(GetParam().mainWindow - QSize(160, 60));
            expectSound(what + " in a smaller window");
            frame(form)->showNormal();
            expectSound(what + " and restored in it");
            frame(form)->setWindowState(state);
            settle();
            program->window().resize(GetParam().mainWindow);
            settle();
            frame(form)->showNormal();
            expectSound(what + " and restored in a larger one");
        }
    }
    frame("Form1")->showMaximized();
    for (const char *command :
         {"DeschidMdbCurent", "DeschidGenerator", "DeschidCentruControl", "DeschidDiag"}) {
        choose(command);
        expectSound(QString("%1 beside a maximised window").arg(command));
    }
    EXPECT_FALSE(frame("Form2")->isMaximized()) << "nobody has asked for it";
    frame("Form1")->showNormal();
    choose("MeniuCalib");
    program->window().resize(GetParam().mainWindow - QSize(160, 60));
    settle();
    closeDialogs();
    expectSound("after a locked dialog");
    program->window().resize(GetParam().mainWindow);
    choose("SalvareArh");
    expectSound("after an archive");
}

INSTANTIATE_TEST_SUITE_P(Windows, LookTest,
                         ::testing::Values(Look{"Small", 1.0, false, {800, 600}},
                                           Look{"SmallWithLargeLetters", 1.6, true, {800, 600}},
                                           Look{"Large", 1.0, true, {1920, 1080}},
                                           Look{"LargeWithLargeLetters", 1.6, false, {1920, 1080}}),
                         [](const auto &look) { return look.param.name; });
