#include "program/about_box.h"
#include "tests/support/controls.h"
#include "tests/support/fake_operator.h"

#include <QLabel>
#include <QLocale>
#include <QSysInfo>

TEST(AboutBox, TellsOfTheProgramItsLibrariesAndTheSystemWithoutATool)
{
    for (const char *tool : {"", "/nu/exista"}) {
        FakeOperator op;
        const AboutBox box("Monitorizare PLC", "2.0.0", tool, op);
        EXPECT_TRUE(control<QLabel>(box, "lblVersion").text().endsWith("2.0.0"));
        const QString libraries = control<QLabel>(box, "lblLibraries").text();
        for (const QString &part : {QStringLiteral("Qt ") + qVersion(), QString("QCustomPlot"),
                                    QString("LGPL v3"), QString("GPL v3")})
            EXPECT_TRUE(libraries.contains(part)) << part.toStdString();
        control<QPushButton>(box, "cmdSysInfo").click();
        ASSERT_EQ(op.told.size(), 1);
        for (const QString &fact :
             {"Sistem: " + QSysInfo::prettyProductName(), "Nucleu: " + QSysInfo::kernelType(),
              QString("Ecran: 800 x 800 pixeli"), "Limba si formate: " + QLocale::system().name()})
            EXPECT_TRUE(op.told[0].contains(fact)) << op.told[0].toStdString();
        EXPECT_FALSE(op.told[0].contains("Memorie: 0"));
        for (const QChar letter : op.told[0])
            EXPECT_LT(letter, QChar(128));
    }
}
