#include "acquisition/form2.h"
#include "acquisition/form_eroare.h"
#include "platform/twips.h"
#include "tests/acquisition/acquisition_rig.h"
#include "tests/support/station_folder.h"

#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QtTest/QTest>

namespace
{

template <typename Control>
Control &control(const QWidget &form, const char *name)
{
    auto *found = form.findChild<Control *>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return *found;
}

void press(const QWidget &form, const char *button)
{
    QTest::mouseClick(&control<QPushButton>(form, button), Qt::LeftButton);
}

class CentruControl : public AcquisitionRig
{
public:
    CentruControl()
    {
        station.monitorActive = false;
        area.resize(800, 600);
        area.show();
        answerAfter(milliseconds(100));
    }
    QMdiSubWindow *open()
    {
        QMdiSubWindow *frame = area.addSubWindow(new Form2(*cycle, station, position));
        frame->show();
        return frame;
    }
    static void expectState(const QWidget &form, QColor colour, const QString &caption)
    {
        const auto &label = control<QLabel>(form, "MonLabel");
        EXPECT_EQ(label.palette().color(label.backgroundRole()), colour);
        EXPECT_EQ(label.text(), caption);
    }

    QMdiArea area;
    WindowPosition position;
};

} // namespace

TEST_F(CentruControl, ButtonsRunTheCycleAndTheLabelShowsIt)
{
    const QColor red(255, 0, 0);
    const QColor green(0, 255, 0);
    QMdiSubWindow *frame = open();
    QWidget &form = *frame->widget();
    expectState(form, red, QStringLiteral("Monitor oprit."));
    press(form, "StartMonCommand");
    expectState(form, green, QStringLiteral("Monitor activ!"));
    time.advance(milliseconds(1300));
    EXPECT_EQ(records.size(), 2u);
    press(form, "StopMonCommand");
    expectState(form, red, QStringLiteral("Monitor oprit."));

    control<QPushButton>(form, "StartMonCommand").setFocus();
    QTest::keyClick(&control<QPushButton>(form, "StartMonCommand"), Qt::Key_Return);
    expectState(form, green, QStringLiteral("Monitor activ!"));
    delete frame; // while the exchange waits
    time.advance(milliseconds(1300));
    EXPECT_EQ(records.size(), 4u);
    log.clear();
    frame = open();
    expectState(*frame->widget(), green, QStringLiteral("Monitor activ!"));
    press(*frame->widget(), "InitDiagCommand");
    EXPECT_EQ(log, (QStringList{"show", "clear"}));
    expectState(*frame->widget(), red, QStringLiteral("Monitor oprit."));
}

TEST_F(CentruControl, StandsWhereItStoodWhenItWasClosed)
{
    QMdiSubWindow *frame = open();
    EXPECT_EQ(frame->pos(), QPoint(0, 0));
    frame->move(120, 90);
    frame->close();
    EXPECT_EQ(position.left, 120 * kTwipsPerPixel);
    frame = open();
    EXPECT_EQ(frame->pos(), QPoint(120, 90));
    frame->showMaximized();
    frame->close();
    EXPECT_EQ(open()->pos(), QPoint(120, 90));
}

TEST(FormEroareWindow, KeepsTheCallingFormDisabledUntilAnswered)
{
    const StationFolder folder;
    Station station;
    station.appFolder = folder.path();
    QMdiArea area;
    area.resize(900, 700);
    area.show();
    QList<QWidget *> forms;
    for (const char *caption : {"Optiuni", "Nume", "Optiuni"}) {
        forms += new QWidget;
        forms.last()->setWindowTitle(QLatin1String(caption));
        area.addSubWindow(forms.last())->show();
    }
    const auto openForms = [&] { return forms; };
    EXPECT_THROW(FormEroare(station, openForms, QSize(0, 0)), RuntimeError) << "no icon";
    QImage picture(32, 32, QImage::Format_ARGB32);
    picture.fill(Qt::yellow);
    ASSERT_TRUE(picture.save(station.warningIconPath(), "ICO"));

    for (const bool byButton : {true, false}) {
        auto *form = new FormEroare(station, openForms, QSize(900, 700) * kTwipsPerPixel);
        QMdiSubWindow *frame = area.addSubWindow(form);
        form->arata_eroare(*forms[0], QStringLiteral("Limita superioara"));
        EXPECT_EQ(form->windowTitle(), QStringLiteral("Optiuni"));
        EXPECT_EQ(control<QLabel>(*form, "EroareLabel").text(),
                  QStringLiteral("Limita superioara"));
        EXPECT_EQ(control<QLabel>(*form, "WarningPicture").pixmap().width(), 47);
        EXPECT_FALSE(forms[0]->isEnabled());
        EXPECT_TRUE(forms[1]->isEnabled());
        EXPECT_TRUE(area.viewport()->rect().contains(frame->geometry()));
        if (byButton)
            press(*form, "OKButton");
        else
            frame->close();
        EXPECT_TRUE(forms[0]->isEnabled());
        EXPECT_FALSE(form->isVisible());
    }
}
