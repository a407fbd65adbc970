#include "acquisition/form_calibrare.h"
#include "dialogs/frm_nume_senzori.h"
#include "dialogs/frm_opt_diag.h"
#include "dialogs/frm_titlu_diag.h"
#include "tests/dialogs/dialog_rig.h"
#include "tests/support/controls.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QSignalSpy>
#include <QTabWidget>

namespace
{

constexpr QSize kScreenTwips(15360, 11520);

class Dialogs : public DialogRig
{
protected:
    std::unique_ptr<frmOptDiag> options(int diagram, OptionTab tab = OptionTab::GraphLimits)
    {
        auto form = std::make_unique<frmOptDiag>(diagram, station, settings, time, kScreenTwips);
        QObject::connect(form.get(), &DefaultsDialog::refused, [this, dialog = form.get()] {
            ++errors;
            dialog->setEnabled(false); // as the error window does until its OK
        });
        form->selectTab(tab);
        return shown(std::move(form));
    }
    std::unique_ptr<frmNumeSenzori> names()
    {
        return shown(std::make_unique<frmNumeSenzori>(1, station, settings));
    }
    std::unique_ptr<frmTitluDiag> title()
    {
        auto form = std::make_unique<frmTitluDiag>(station, settings);
        form->incarca_titlu(1);
        return shown(std::move(form));
    }
    std::unique_ptr<FormCalibrare> calibration()
    {
        return shown(std::make_unique<FormCalibrare>(station, settings, op, kScreenTwips));
    }
    std::vector<std::unique_ptr<QDialog>> allDialogs()
    {
        std::vector<std::unique_ptr<QDialog>> all;
        for (const OptionTab tab :
             {OptionTab::GraphLimits, OptionTab::Alarms, OptionTab::ScanOptions})
            all.push_back(options(1, tab));
        all.push_back(names());
        all.push_back(title());
        all.push_back(calibration());
        return all;
    }

    int errors = 0;

private:
    template <typename Form>
    static std::unique_ptr<Form> shown(std::unique_ptr<Form> form)
    {
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
        return form;
    }
};

/// The controls that the tab key visits, in its order.
QList<QWidget *> tabStops(const QDialog &form)
{
    QList<QWidget *> stops;
    for (QWidget *next = form.nextInFocusChain(); next != &form; next = next->nextInFocusChain())
        if (next->focusPolicy() & Qt::TabFocus && next->isVisible() && !next->focusProxy())
            stops += next;
    return stops;
}

} // namespace

TEST_F(Dialogs, OptionsApplyWhatIsTypedAndShowWhatWasUnderstood)
{
    auto form = options(1);
    EXPECT_EQ(form->objectName(), "frmOptDiag2");
    EXPECT_EQ(form->windowTitle(), "Diagrama Canale 4,5,6.");
    type(*form, "LimSupText", "12,5");
    press(*form, "cmdApply");
    EXPECT_EQ(textOf(*form, "LimSupText"), "12.5");
    EXPECT_EQ(live.chart(1).valueAxisMaximum(), 12.5);

    form->selectTab(OptionTab::ScanOptions);
    type(*form, "ScanText", "2.7");
    control<QComboBox>(*form, "MasuraTimpCombo").setCurrentText("Ore");
    type(*form, "NumeMdb4Text", "date");
    press(*form, "cmdSaveDef");
    EXPECT_EQ(textOf(*form, "ScanText"), "2");
    EXPECT_EQ(textOf(*form, "NumeMdb4Text"), "date.mdb");
    EXPECT_TRUE(folder.config().startsWith("Diagrama1.interval_scanare =,2\r\n"));
    EXPECT_EQ(station.nextSampling, time.now().addSecs(7200)) << "of the first diagram, too";
    EXPECT_TRUE(control<QLabel>(*form, "CaleMdbLabel")
                    .text()
                    .startsWith("Director salvare= " + QDir::toNativeSeparators(folder.path())));
}

TEST_F(Dialogs, RefusedOptionsKeepTheDialogUntilTheErrorWasRead)
{
    const QByteArray before = folder.config();
    auto form = options(0, OptionTab::Alarms);
    QSignalSpy closed(form.get(), &QDialog::finished);
    type(*form, "AlarmSupText", "mult");
    press(*form, "cmdOK");
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(textOf(*form, "AlarmSupText"), "138");
    form->close();
    EXPECT_TRUE(form->isVisible()) << "the title bar of a disabled window closes nothing";
    form->setEnabled(true);
    EXPECT_EQ(form->focusWidget()->objectName(), "AlarmSupText");
    QTest::keyClick(&control<QLineEdit>(*form, "AlarmSupText"), Qt::Key_Return);
    EXPECT_FALSE(form->isVisible()) << "Enter presses OK";
    EXPECT_EQ(closed.size(), 1);
    EXPECT_EQ(folder.config(), before);
}

TEST_F(Dialogs, ControlTabTurnsTheTabsFromAnyControl)
{
    auto form = options(0, OptionTab::Alarms);
    const auto &tabs = control<QTabWidget>(*form, "tbsOptions");
    EXPECT_EQ(tabs.currentIndex(), 1);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "AlarmSupText");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "ScanText");
    control<QPushButton>(*form, "cmdApply").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabs.currentIndex(), 0) << "behind the last comes the first";
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "cmdApply");
    EXPECT_TRUE(control<QWidget>(*form, "picOptions_0").isVisible());
    EXPECT_FALSE(control<QWidget>(*form, "picOptions_2").isVisible());
}

TEST_F(Dialogs, CalibrationRevertsAllFieldsAndStaysOpen)
{
    station.sensors[5].calibrationText = "-12,75";
    auto form = calibration();
    type(*form, "CalibText_0", "1,55555");
    EXPECT_EQ(textOf(*form, "CalibText_0"), "1,555") << "five characters at most";
    type(*form, "CalibText_1", "-");
    QString behindTheMessage;
    op.meanwhile = [&] { behindTheMessage = textOf(*form, "CalibText_0"); };
    const QByteArray before = folder.config();
    press(*form, "cmdOk");
    EXPECT_EQ(op.told, QStringList{"Verificati corectitudinea campurilor"});
    EXPECT_EQ(op.lastIcon, Operator::Icon::Exclamation);
    EXPECT_EQ(folder.config(), before);
    EXPECT_EQ(behindTheMessage, "1.555");
    EXPECT_EQ(textOf(*form, "CalibText_0"), "1,555");
    EXPECT_EQ(textOf(*form, "CalibText_1"), "0");
    ASSERT_TRUE(form->isVisible());
    press(*form, "cmdOk");
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(folder.config().contains("Calibrare.Diagrama2.Senzor3 =,-12.7\r\n"))
        << "a longer offset from the settings file is cut too";
}

TEST_F(Dialogs, EscapeAndTheTitleBarChangeNothingAndSayThatTheDialogClosed)
{
    const QByteArray before = folder.config();
    for (const bool escape : {true, false}) {
        for (const auto &form : allDialogs()) {
            QSignalSpy closed(form.get(), SIGNAL(finished(int)));
            form->findChild<QLineEdit *>()->setText("3");
            if (escape)
                QTest::keyClick(form.get(), Qt::Key_Escape);
            else
                form->close();
            EXPECT_EQ(closed.size(), 1) << form->objectName().toStdString();
        }
    }
    EXPECT_EQ(folder.config(), before);
    EXPECT_EQ(station.Diagrame[1].limita_maxima, 150);
}

TEST_F(Dialogs, TabKeyFollowsTheEyeAndNoTextIsCutInLargeFonts)
{
    const QFont normal = QApplication::font();
    for (const double scale : {1.0, 2.0}) {
        QFont font = normal;
        font.setPointSizeF(normal.pointSizeF() * scale);
        QApplication::setFont(font);
        for (const auto &form : allDialogs()) {
            const std::string name = form->objectName().toStdString();
            QPoint last;
            for (const QWidget *stop : tabStops(*form)) {
                const QPoint at = stop->mapTo(form.get(), stop->rect().center());
                EXPECT_TRUE(at.y() > last.y() + 5 || at.x() > last.x())
                    << name << ": " << stop->objectName().toStdString();
                last = at;
            }
            EXPECT_GE(tabStops(*form).size(), 3) << name;
            for (const QWidget *part : form->findChildren<QWidget *>()) {
                if (!qobject_cast<const QLabel *>(part) && !qobject_cast<const QPushButton *>(part))
                    continue;
                const QSize needed = part->sizeHint().boundedTo(part->size());
                EXPECT_TRUE(!part->isVisible() || needed == part->sizeHint())
                    << name << ": " << part->objectName().toStdString();
            }
        }
    }
    QApplication::setFont(normal);
}
