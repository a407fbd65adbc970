#include "chart/chart_view.h"
#include "diagrams/form1.h"
#include "tests/diagrams/diagrams_rig.h"
#include "tests/support/controls.h"

#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QSignalSpy>
#include <qcustomplot.h>

namespace
{

class Form1Test : public DiagramsRig
{
protected:
    Form1Test()
    {
        area.resize(1020, 690);
        area.show();
    }
    Form1 &open()
    {
        auto *form = new Form1(station, live);
        QObject::connect(form, &Form1::menusEnabled, &area,
                         [this](bool enabled) { menus.push_back(enabled); });
        frame = area.addSubWindow(form);
        frame->show();
        form->load(area.size());
        return *form;
    }
    static QWidget &plotOf(const Form1 &form, const char *chart)
    {
        return *control<ChartView>(form, chart).findChild<QCustomPlot *>();
    }

    QMdiArea area;
    QPointer<QMdiSubWindow> frame;
    std::vector<bool> menus;
};

} // namespace

TEST_F(Form1Test, LoadAndUnloadSwitchMenusAndFlag)
{
    folder.setValue("Diagrama1.Titlu =", "Camera umeda");
    folder.setValue("Diagrama2.Titlu =", "Camera uscata");
    QPointer<Form1> form = &open();
    EXPECT_TRUE(station.diagramsOpen);
    const auto &title = control<QLabel>(*form, "Label2");
    EXPECT_EQ(title.text(), "Camera uscata");
    EXPECT_EQ(control<QLabel>(*form, "Label1").text(), "Camera umeda");
    EXPECT_NEAR(title.geometry().center().x(), form->rect().center().x(), 1);

    QSignalSpy closed(form, &Form1::closed);
    frame->close();
    QTRY_VERIFY(!form);
    EXPECT_EQ(closed.size(), 1);
    EXPECT_FALSE(station.diagramsOpen);
    ASSERT_EQ(menus, (std::vector{true, false}));

    station.Diagrame[0].chart->setValueAxisMaximum(99); // the dialogs go on with the diagrams
    open();
    EXPECT_EQ(station.Diagrame[0].chart->valueAxisMaximum(), 150);
}

TEST_F(Form1Test, LayoutFollowsTheMainWindowButNotWhileMaximised)
{
    Form1 &form = open();
    auto &lower = control<ChartView>(form, "MSChart2");
    for (const QSize main : {QSize(620, 420), QSize(1900, 980)}) {
        form.aranjare_diagrame(main);
        EXPECT_EQ(frame->size(), QSize(main.width() - 4, main.height() - 71)); // 1060 / 15 = 70.67
        EXPECT_EQ(lower.y(), main.height() / 2);
        EXPECT_NEAR(lower.height(), std::min(frame->height() / 3, form.height() - lower.y()), 1);
        const QRect button = control<QPushButton>(form, "CentruControlCommand").geometry();
        EXPECT_NEAR(button.center().x(), form.rect().center().x(), 1);
        EXPECT_FALSE(button.intersects(control<QLabel>(form, "Label2").geometry()));
        EXPECT_GE(control<QLabel>(form, "Label1").y(), 0);
    }
    frame->hide();
    form.aranjare_diagrame(QSize(800, 600));
    EXPECT_EQ(form.width(), frame->contentsRect().width()) << "hidden windows are laid out too";

    frame->showMaximized();
    const QSize maximised = frame->size();
    form.aranjare_diagrame(QSize(500, 400));
    EXPECT_EQ(frame->size(), maximised);
}

TEST_F(Form1Test, FunctionKeysWorkWhereverTheFocusIs)
{
    Form1 &form = open();
    QSignalSpy start(&form, &Form1::startRequested);
    QSignalSpy stop(&form, &Form1::stopRequested);
    QSignalSpy init(&form, &Form1::initRequested);
    QWidget &button = control<QPushButton>(form, "CentruControlCommand");
    for (QWidget *focus : {static_cast<QWidget *>(&form), &plotOf(form, "MSChart2"), &button}) {
        QKeyEvent held(QEvent::KeyRelease, Qt::Key_F1, {}, {}, true);
        QCoreApplication::sendEvent(focus, &held);
        EXPECT_TRUE(start.isEmpty()) << "letting go counts";
        for (const Qt::Key key : {Qt::Key_F1, Qt::Key_F2, Qt::Key_F3, Qt::Key_F4})
            QTest::keyClick(focus, key);
        for (QSignalSpy *spy : {&start, &stop, &init}) {
            EXPECT_EQ(spy->size(), 1) << focus->objectName().toStdString();
            spy->clear();
        }
    }
}

TEST_F(Form1Test, MouseAsksForMenuTitleAndControlCentre)
{
    Form1 &form = open();
    QSignalSpy menu(&form, &Form1::fileMenuRequested);
    QWidget &plot = plotOf(form, "MSChart1");
    const QPoint point(60, 40);
    QTest::mouseClick(&plot, Qt::LeftButton, {}, point);
    EXPECT_TRUE(menu.isEmpty());
    QTest::mouseClick(&plot, Qt::RightButton, {}, point);
    ASSERT_EQ(menu.size(), 1);
    EXPECT_EQ(menu.takeFirst().at(0).toPoint(), plot.mapToGlobal(point));

    QSignalSpy title(&form, &Form1::titleEditRequested);
    for (const int index : {0, 1}) {
        QTest::mouseDClick(&control<QLabel>(form, index == 0 ? "Label1" : "Label2"),
                           Qt::LeftButton);
        ASSERT_EQ(title.size(), 1);
        EXPECT_EQ(title.takeFirst().at(0).toInt(), index);
    }
    QSignalSpy centre(&form, &Form1::controlCentreRequested);
    QTest::mouseClick(&control<QPushButton>(form, "CentruControlCommand"), Qt::LeftButton);
    EXPECT_EQ(centre.size(), 1);
}

TEST_F(Form1Test, PickedPointIsToldUnderItsChart)
{
    Form1 &form = open();
    sample(75);
    for (const auto &[chart, label, sensor] :
         {std::tuple("MSChart1", "DateLabel1_0", "T1"), {"MSChart2", "DateLabel1_1", "T4"}}) {
        auto &plot = static_cast<QCustomPlot &>(plotOf(form, chart));
        plot.replot();
        QTest::mouseClick(
            &plot, Qt::LeftButton, {},
            QPointF(plot.xAxis->coordToPixel(1), plot.yAxis->coordToPixel(75)).toPoint());
        EXPECT_EQ(control<QLabel>(form, label).text(),
                  QString(sensor) + " = 75\r\n07.03.2026 09:05:01");
    }
}
