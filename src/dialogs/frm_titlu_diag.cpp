#include "dialogs/frm_titlu_diag.h"
#include "app/settings/station.h"
#include "app/texts.h"
#include "dialogs/names_and_title.h"
#include "dialogs/texts.h"
#include "platform/dialog_buttons.h"
#include "platform/window_frame.h"

#include <QLineEdit>
#include <QVBoxLayout>

constexpr int kTitleCharacters = 40;

frmTitluDiag::frmTitluDiag(Station &station, Settings &settings, QWidget *parent)
    : QDialog(parent), m_station(station), m_settings(settings), m_title(new QLineEdit)
{
    setObjectName(QStringLiteral("frmTitluDiag"));
    setWindowTitle(texts::dialogs::titleCaption());
    fitCaption(*this);
    m_title->setObjectName(QStringLiteral("textTitlu"));
    m_title->setAccessibleName(texts::dialogs::titleCaption());
    m_title->setMinimumWidth(m_title->fontMetrics().averageCharWidth() * kTitleCharacters);
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_title);
    column->addLayout(dialogButtons(*this, {QStringLiteral("OKButton"), texts::app::okButton()},
                                    {QStringLiteral("CancelButton"), texts::app::cancelButton()},
                                    [this] { OKButton_Click(); }));
}

void frmTitluDiag::incarca_titlu(int diagram)
{
    m_title->setText(m_station.diagramAt(static_cast<std::size_t>(diagram)).Titlu);
    m_title->selectAll();
    m_diagram = static_cast<std::size_t>(diagram);
}

void frmTitluDiag::OKButton_Click()
{
    retitleDiagram(m_station, m_settings, m_diagram, m_title->text());
    accept();
}
