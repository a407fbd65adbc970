#include "app/mdiform1.h"
#include "app/screen_size.h"
#include "platform/message_box_operator.h"
#include "platform/window_frame.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QTimer>
#include <gtest/gtest.h>

TEST(DimensiuniEcran, ThreeStandardHeightsAreLaidOutAsFourToThree)
{
    const struct {
        QSize pixels;
        int height, width;
    } cases[] = {{{1280, 768}, 11520, 15360},
                 {{1280, 1024}, 15360, 19200},
                 {{800, 480}, 7200, 9600},
                 {{1024, 600}, 9000, 12000},
                 {{7680, 4320}, 32767, 32767}};
    for (const auto &c : cases) {
        const ScreenSize size = dimensiuni_ecran(c.pixels);
        EXPECT_EQ(size.InaltimeEcran, c.height);
        EXPECT_EQ(size.LatimeEcran, c.width);
    }
}

TEST(MessageBoxOperator, ShowsPlainTextUnderTheTitleAndTakesTheButtonForAnAnswer)
{
    MessageBoxOperator op(QStringLiteral("Monitorizare PLC"));
    const auto onceShown = [](const std::function<void(QMessageBox &)> &answer) {
        QTimer::singleShot(0, [answer] {
            auto &box = *qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            EXPECT_EQ(box.windowModality(), Qt::ApplicationModal);
            EXPECT_EQ(box.windowTitle(), "Monitorizare PLC");
            EXPECT_GE(box.width(), captionWidth(box)) << "however short the text";
            EXPECT_EQ(box.text(), "<b>?");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            answer(box);
        });
    };
    using Answer = Operator::Answer;
    for (const auto &[button, answer] : {std::pair(QMessageBox::Yes, Answer::Yes),
                                         {QMessageBox::No, Answer::No},
                                         {QMessageBox::Cancel, Answer::Cancel},
                                         {QMessageBox::NoButton, Answer::Cancel}}) {
        onceShown([pressed = button](QMessageBox &box) {
            pressed == QMessageBox::NoButton ? box.reject() : box.button(pressed)->click();
        });
        EXPECT_EQ(op.ask(QStringLiteral("<b>?")), answer);
    }
    for (const auto &[icon, shown] : {std::pair(Operator::Icon::None, QMessageBox::NoIcon),
                                      {Operator::Icon::Critical, QMessageBox::Critical},
                                      {Operator::Icon::Exclamation, QMessageBox::Warning}}) {
        onceShown([expected = shown](QMessageBox &box) {
            EXPECT_EQ(box.icon(), expected);
            box.accept();
        });
        op.tell(QStringLiteral("<b>?"), icon);
    }
}

TEST(MDIForm1, BringsAWindowThatIsOutOfReachBackIntoSight)
{
    MDIForm1 window{[] { return true; }};
    auto *child = new QWidget;
    QMdiSubWindow *frame = window.addChild(child);
    frame->resize(300, 200);
    window.resize(900, 700);
    window.show();
    const QPoint corner(590, 440);
    const auto broughtUpAt = [&](QPoint position) {
        frame->move(position);
        window.bringUp(child);
        return frame->geometry();
    };
    for (const QPoint position : {corner, QPoint(-150, 300), QPoint(700, 600)})
        EXPECT_EQ(broughtUpAt(position).topLeft(), position) << "partly out, within reach";
    window.resize(500, 400);
    for (const QPoint position : {corner, QPoint(-280, 90), QPoint(90, -30), QPoint(480, 90)})
        EXPECT_TRUE(QRect({}, window.innerSize()).contains(broughtUpAt(position)));
}
