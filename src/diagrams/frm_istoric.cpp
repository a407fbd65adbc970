#include "diagrams/frm_istoric.h"
#include "app/settings/texts.h"
#include "diagrams/texts.h"
#include "platform/dialog_buttons.h"
#include "platform/window_frame.h"

#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

FrmIstoric::FrmIstoric(Station &station, Settings &settings, ShowError arata_eroare,
                       QSize screenTwips, QWidget *parent)
    : QDialog(parent),
      m_limits(station, settings, [this, show = std::move(arata_eroare)](const QString &message) {
          show(*this, message);
      })
{
    setObjectName(QStringLiteral("FrmIstoric"));
    setWindowTitle(texts::diagrams::historyLimitsCaption());
    auto *column = new QVBoxLayout(this);
    auto *diagrams = new QHBoxLayout;
    diagrams->addWidget(limitsOf(0, m_supTemp, m_infTemp, QStringLiteral("Temp")));
    diagrams->addWidget(limitsOf(1, m_supPres, m_infPres, QStringLiteral("Pres")));
    column->addLayout(diagrams);
    column->addLayout(buttonRow());
    fillBoxes();
    focusFirstBox();
    connect(this, &QDialog::finished, this, &FrmIstoric::closed);
    adjustSize();
    centreOnScreen(*this, screenTwips);
}

QGroupBox *FrmIstoric::limitsOf(int diagram, QLineEdit *&upper, QLineEdit *&lower,
                                const QString &suffix)
{
    auto *frame = new QGroupBox(texts::diagrams::diagramOfSensors(diagram));
    auto *form = new QFormLayout(frame);
    upper = new QLineEdit;
    upper->setObjectName(QStringLiteral("LimSupText") + suffix);
    lower = new QLineEdit;
    lower->setObjectName(QStringLiteral("LimInfText") + suffix);
    form->addRow(texts::settings::upperLimit(), upper);
    form->addRow(texts::settings::lowerLimit(), lower);
    return frame;
}

QHBoxLayout *FrmIstoric::buttonRow()
{
    auto *row = new QHBoxLayout;
    const auto add = [&](const QString &name, const QString &caption, auto &&clicked) {
        QPushButton *button = dialogButton(*this, {name, caption});
        connect(button, &QPushButton::clicked, this, clicked);
        row->addWidget(button);
        return button;
    };
    add(QStringLiteral("cmdSaveDef"), texts::settings::saveDefaultsButton(),
        &FrmIstoric::cmdSaveDef_Click);
    add(QStringLiteral("cmdRestDef"), texts::settings::restoreDefaultsButton(),
        &FrmIstoric::cmdRestDef_Click);
    row->addStretch();
    add(QStringLiteral("cmdOK"), texts::settings::okButton(), &FrmIstoric::cmdOK_Click)
        ->setDefault(true);
    add(QStringLiteral("cmdCancel"), texts::settings::cancelButton(), &FrmIstoric::reject);
    add(QStringLiteral("cmdApply"), texts::settings::applyButton(), &FrmIstoric::cmdApply_Click);
    return row;
}

void FrmIstoric::reject()
{
    if (isEnabled())
        QDialog::reject();
}

void FrmIstoric::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    // Being disabled took the focus away; behind the error window the entry is corrected.
    if (event->type() == QEvent::EnabledChange && isEnabled())
        focusFirstBox();
}

void FrmIstoric::focusFirstBox()
{
    m_supTemp->setFocus();
    m_supTemp->selectAll();
}

void FrmIstoric::fillBoxes()
{
    const HistoryLimitTexts texts = m_limits.texts();
    m_infTemp->setText(texts.LimInfTemp);
    m_supTemp->setText(texts.LimSupTemp);
    m_infPres->setText(texts.LimInfPres);
    m_supPres->setText(texts.LimSupPres);
}

bool FrmIstoric::cmdApply_Click()
{
    HistoryLimitTexts texts{m_infTemp->text(), m_supTemp->text(), m_infPres->text(),
                            m_supPres->text()};
    const bool valid = m_limits.valideaza_tab(texts);
    if (valid)
        fillBoxes();
    return valid;
}

void FrmIstoric::cmdOK_Click()
{
    if (cmdApply_Click())
        accept();
}

/// What is in memory is saved, even when the entry was refused.
void FrmIstoric::cmdSaveDef_Click()
{
    cmdApply_Click();
    m_limits.save();
}

void FrmIstoric::cmdRestDef_Click()
{
    m_limits.restore();
    fillBoxes();
}
