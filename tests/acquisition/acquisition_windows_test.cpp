#include "acquisition/form2.h"
#include "acquisition/form_eroare.h"
#include "platform/twips.h"
#include "tests/acquisition/acquisition_rig.h"
#include "tests/support/controls.h"
#include "tests/support/station_folder.h"

#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QtTest/QTest>

namespace
{

class AcquisitionWindows : public AcquisitionRig
{
public:
    AcquisitionWindows()
    {
        area.resize(900, 700);
        area.show();
    }
    QMdiSubWindow *open(QWidget *form)
    {
        QMdiSubWindow *frame = area.addSubWindow(form);
        frame->show();
        return frame;
    }
    QMdiArea area;
};

} // namespace

TEST_F(AcquisitionWindows, ControlCentreRunsTheCycleAndStandsWhereItStood)
{
    station.monitorActive = false;
    answerAfter(milliseconds(100));
    WindowPosition position;
    QMdiSubWindow *frame = open(new Form2(*cycle, station, position));
    const auto press = [&](const char *name) {
        auto &button = control<QPushButton>(*frame, name);
        button.setFocus();
        QTest::keyClick(&button, Qt::Key_Return);
    };
    const auto expectActive = [&](bool active) {
        const auto &label = control<QLabel>(*frame, "MonLabel");
        EXPECT_EQ(label.text(), active ? "Monitor activ!" : "Monitor oprit.");
        EXPECT_EQ(label.palette().color(label.backgroundRole()), QColor(active ? "lime" : "red"));
    };
    expectActive(false);
    EXPECT_EQ(control<QPushButton>(*frame, "StartMonCommand").text(), "Start Monitorizare");
    press("StartMonCommand");
    expectActive(true);
    EXPECT_EQ(control<QPushButton>(*frame, "StopMonCommand").text(), "Stop Monitorizare");
    press("StopMonCommand");
    expectActive(false);
    press("StartMonCommand");
    frame->move(120, 90);
    frame->close(); // while the exchange waits
    time.advance(milliseconds(100));
    EXPECT_EQ(records.size(), 1u);
    frame = open(new Form2(*cycle, station, position));
    EXPECT_EQ(frame->pos(), QPoint(120, 90));
    expectActive(true);
    press("InitDiagCommand");
    EXPECT_EQ(log.last(), "clear");
    expectActive(false);
}

TEST_F(AcquisitionWindows, ErrorWindowKeepsTheCallingFormDisabledUntilAnswered)
{
    const StationFolder folder;
    station.appFolder = folder.path();
    auto *options = new QWidget;
    options->setWindowTitle(QStringLiteral("Optiuni"));
    const QMdiSubWindow *calling = open(options);
    const QString icon = station.warningIconPath();
    ASSERT_TRUE(QFile::rename(icon, icon + ".away"));
    EXPECT_THROW(FormEroare(station, {}), RuntimeError) << "no icon";
    ASSERT_TRUE(QFile::rename(icon + ".away", icon));

    for (const bool byButton : {true, false}) {
        auto *form = new FormEroare(station, QSize(900, 700) * kTwipsPerPixel);
        QMdiSubWindow *frame = area.addSubWindow(form);
        form->arata_eroare(*options, QStringLiteral("Limita superioara"));
        EXPECT_EQ(frame->windowTitle(), "Optiuni");
        EXPECT_EQ(control<QLabel>(*form, "EroareLabel").text(), "Limita superioara");
        EXPECT_FALSE(calling->isEnabled());
        EXPECT_TRUE(area.viewport()->rect().contains(frame->geometry()));
        byButton ? control<QPushButton>(*form, "OKButton").click() : (void)frame->close();
        EXPECT_TRUE(calling->isEnabled());
        EXPECT_FALSE(form->isVisible());
    }
}
