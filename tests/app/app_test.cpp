#include "app/screen_size.h"
#include "platform/message_box_operator.h"
#include "platform/window_frame.h"

#include <QAbstractButton>
#include <QApplication>
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
