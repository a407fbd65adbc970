#include "program/about_box.h"
#include "tests/support/controls.h"
#include "tests/support/fake_operator.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QSysInfo>

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
    box->accept();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(box.isNull());
}

TEST(AboutBox, TellsOfTheSystemItselfWithoutATool)
{
    QFont font = QApplication::font();
    font.setPixelSize(20); // as a desktop may have it
    QApplication::setFont(font);
    for (const char *tool : {"", "/nu/exista"}) {
        FakeOperator op;
        AboutBox box("Monitorizare PLC", "2.0.0", tool, op);
        box.setAttribute(Qt::WA_DeleteOnClose, false);
        EXPECT_GT(QFontInfo(control<QLabel>(box, "lblTitle").font()).pixelSize(), 30);
        control<QPushButton>(box, "cmdSysInfo").click();
        ASSERT_EQ(op.told.size(), 1);
        for (const QString &fact :
             {"Sistem: " + QSysInfo::prettyProductName(), "Nucleu: " + QSysInfo::kernelType(),
              QStringLiteral("Ecran: 800 x 800 pixeli"),
              "Limba si formate: " + QLocale::system().name()})
            EXPECT_TRUE(op.told[0].contains(fact)) << op.told[0].toStdString();
        EXPECT_FALSE(op.told[0].contains("Memorie: 0"));
        for (const QChar letter : op.told[0])
            EXPECT_LT(letter, QChar(128));
    }
    QApplication::setFont({});
}
