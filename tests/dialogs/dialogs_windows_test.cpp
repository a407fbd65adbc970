// The dialogs as the operator gets them: opened by their commands in the whole program.

#include "acquisition/form_eroare.h"
#include "chart/chart_grid.h"
#include "tests/program/program_rig.h"
#include "tests/support/runtime_errors.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QTabWidget>

namespace
{

class Dialogs : public ProgramRig
{
protected:
    QDialog &open(const char *command, const char *name)
    {
        start();
        item(command)->trigger();
        auto *dialog = child<QDialog>(name);
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
        return *dialog;
    }
    static QString focus() { return QApplication::focusWidget()->objectName(); }
    static void turnTab()
    {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    }
};

} // namespace

TEST_F(Dialogs, OptionsApplyWhatIsTypedAndShowWhatWasUnderstood)
{
    QDialog &form = open("ScanPresGraf", "frmOptDiag2");
    EXPECT_EQ(form.windowTitle(), "Diagrama Canale 4,5,6.");
    EXPECT_TRUE(control<QLabel>(form, "CaleMdbLabel")
                    .text()
                    .startsWith("Director salvare= " + QDir::toNativeSeparators(folder.path())));
    type(form, "ScanText", "2.7");
    control<QComboBox>(form, "MasuraTimpCombo").setCurrentText("Ore");
    type(form, "NumeMdb4Text", "date");
    press(form, "cmdSaveDef");
    EXPECT_EQ(textOf(form, "ScanText"), "2");
    EXPECT_EQ(textOf(form, "NumeMdb4Text"), "date.mdb");
    EXPECT_TRUE(folder.config().startsWith("Diagrama1.interval_scanare =,2\r\n"));
    EXPECT_EQ(program->station().Diagrame[0].masura_interval, 2) << "of the first diagram, too";

    control<QLineEdit>(form, "ScanText").setFocus();
    turnTab();
    EXPECT_EQ(focus(), "LimSupText") << "behind the last tab comes the first";
    type(form, "LimSupText", "12,5");
    press(form, "cmdApply");
    EXPECT_EQ(textOf(form, "LimSupText"), "12.5");
    EXPECT_EQ(program->station().Diagrame[1].chart->valueAxisMaximum(), 12.5);
    turnTab();
    EXPECT_EQ(focus(), "cmdApply");
    EXPECT_TRUE(control<QWidget>(form, "picOptions_1").isVisible());
    EXPECT_FALSE(control<QWidget>(form, "picOptions_0").isVisible());
    control<QLineEdit>(form, "AlarmSupText").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(form.isVisible()) << "Enter presses OK";
}

TEST_F(Dialogs, CalibrationRevertsAllFieldsAndStaysOpen)
{
    folder.setValue("Calibrare.Diagrama2.Senzor3 =", "-12.75");
    const QByteArray before = folder.config();
    QDialog &form = open("MeniuCalib", "FormCalibrare");
    type(form, "CalibText_0", "1,55555");
    EXPECT_EQ(textOf(form, "CalibText_0"), "1,555") << "five characters at most";
    type(form, "CalibText_1", "-");
    type(form, "CalibText_2", "9");
    QString behindTheMessage;
    op.meanwhile = [&] { behindTheMessage = textOf(form, "CalibText_0"); };
    press(form, "cmdOk");
    EXPECT_EQ(op.told, QStringList{"Verificati corectitudinea campurilor"});
    EXPECT_EQ(op.lastIcon, Operator::Icon::Exclamation);
    EXPECT_EQ(folder.config(), before);
    EXPECT_EQ(behindTheMessage, "1.555");
    for (const auto &[box, kept] :
         {std::pair("CalibText_0", "1,555"), {"CalibText_1", "0"}, {"CalibText_2", "0"}})
        EXPECT_EQ(textOf(form, box), kept) << "those before the bad one were taken";
    ASSERT_TRUE(form.isVisible());
    press(form, "cmdOk");
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(folder.config().startsWith("Calibrare.Diagrama1.Senzor1 =,1.555\r\n"));
    EXPECT_TRUE(folder.config().contains("Calibrare.Diagrama2.Senzor3 =,-12.7\r\n"))
        << "a longer offset from the settings file is cut too";
}

TEST_F(Dialogs, ErrorWindowWithoutItsIconIsTheRuntimesError)
{
    const Station nowhere;
    EXPECT_EQ(errorOf([&] { FormEroare(nowhere, {}); }), RuntimeError::FileNotFound);
}
