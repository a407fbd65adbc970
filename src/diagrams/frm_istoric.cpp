#include "diagrams/frm_istoric.h"
#include "app/texts.h"
#include "diagrams/texts.h"
#include "platform/window_frame.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>

FrmIstoric::FrmIstoric(Station &station, Settings &settings, QSize screenTwips, QWidget *parent)
    : DefaultsDialog(parent),
      m_limits(station, settings, [this](const QString &message) { emit refused(message); })
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
    resize(sizeHint());
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
    form->addRow(texts::app::upperLimit(), upper);
    form->addRow(texts::app::lowerLimit(), lower);
    return frame;
}

void FrmIstoric::focusFirstBox()
{
    m_supTemp->setFocus();
    m_supTemp->selectAll();
}

void FrmIstoric::fillBoxes()
{
    const HistoryLimitBoxes boxes = m_limits.boxes();
    m_infTemp->setText(boxes.LimInfTemp);
    m_supTemp->setText(boxes.LimSupTemp);
    m_infPres->setText(boxes.LimInfPres);
    m_supPres->setText(boxes.LimSupPres);
}

/// False when the entry was refused.
bool FrmIstoric::takeEntry()
{
    HistoryLimitBoxes boxes{m_infTemp->text(), m_supTemp->text(), m_infPres->text(),
                            m_supPres->text()};
    const bool valid = m_limits.valideaza_tab(boxes);
    if (valid)
        fillBoxes();
    return valid;
}

void FrmIstoric::cmdApply_Click()
{
    takeEntry();
}

void FrmIstoric::cmdOK_Click()
{
    if (takeEntry())
        accept();
}

/// What is in memory is saved, even when the entry was refused.
void FrmIstoric::cmdSaveDef_Click()
{
    takeEntry();
    m_limits.save();
}

void FrmIstoric::cmdRestDef_Click()
{
    m_limits.restore();
    fillBoxes();
}
