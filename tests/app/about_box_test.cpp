#include "app/about_box.h"
#include "tests/support/controls.h"
#include "tests/support/fake_operator.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

TEST(AboutBox, NamesTheProgramAndItsLibraries)
{
    FakeOperator op;
    QPointer<AboutBox> box = new AboutBox("Monitorizare PLC", "2.0.0", {}, op);
    box->show();
    EXPECT_FALSE(box->isModal());
    EXPECT_EQ(control<QLabel>(*box, "lblTitle").text(), "Monitorizare PLC");
    EXPECT_TRUE(control<QLabel>(*box, "lblVersion").text().endsWith("2.0.0"));
    const QString libraries = control<QLabel>(*box, "lblLibraries").text();
    for (const QString &part : {QStringLiteral("Qt ") + qVersion(), QStringLiteral("QCustomPlot"),
                                QStringLiteral("LGPL v3"), QStringLiteral("GPL v3")})
        EXPECT_TRUE(libraries.contains(part)) << part.toStdString();
    EXPECT_FALSE(control<QPushButton>(*box, "cmdSysInfo").isVisible()) << "there is no tool";
    box->accept();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(box.isNull());
}

TEST(AboutBox, SaysWhenTheToolDoesNotStart)
{
    FakeOperator op;
    AboutBox box("Monitorizare PLC", "2.0.0", "/nu/exista", op);
    box.setAttribute(Qt::WA_DeleteOnClose, false);
    box.show();
    auto &button = control<QPushButton>(box, "cmdSysInfo");
    EXPECT_TRUE(button.isVisible());
    button.click();
    EXPECT_EQ(op.told.size(), 1);
    EXPECT_EQ(op.lastIcon, Operator::Icon::Critical);
}
