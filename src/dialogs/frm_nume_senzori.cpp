#include "dialogs/frm_nume_senzori.h"
#include "app/settings/station.h"
#include "app/texts.h"
#include "dialogs/names_and_title.h"
#include "dialogs/texts.h"
#include "platform/dialog_buttons.h"
#include "platform/window_frame.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

frmNumeSenzori::frmNumeSenzori(int diagram, Station &station, Settings &settings, QWidget *parent)
    : QDialog(parent), m_diagram(static_cast<std::size_t>(diagram)), m_station(station),
      m_settings(settings)
{
    setObjectName(QStringLiteral("frmNumeSenzori%1").arg(diagram + 1));
    setWindowTitle(texts::dialogs::sensorNamesCaption(diagram));
    setModal(true);
    fitCaption(*this);
    incarca_senzori_form();
    aranjare_senzori_form();
}

void frmNumeSenzori::incarca_senzori_form()
{
    const Diagrama &record = m_station.diagramAt(m_diagram);
    for (int i = 0; i < record.sensorCount; ++i) {
        auto *box = new QLineEdit(record.Nume.value(i), this);
        box->setObjectName(QStringLiteral("textNume%1").arg(i));
        auto *label = new QLabel(texts::dialogs::sensorLabel(i + 1), this);
        label->setObjectName(QStringLiteral("labelNume%1").arg(i));
        label->setBuddy(box);
        m_labels.push_back(label);
        m_boxes.push_back(box);
    }
    m_boxes.front()->selectAll();
}

void frmNumeSenzori::aranjare_senzori_form()
{
    auto *grid = new QGridLayout(this);
    for (std::size_t i = 0; i < m_boxes.size(); ++i) {
        grid->addWidget(m_labels[i], static_cast<int>(i), 0);
        grid->addWidget(m_boxes[i], static_cast<int>(i), 1);
    }
    grid->addLayout(dialogButtons(*this, {QStringLiteral("OKButton"), texts::app::okButton()},
                                  {QStringLiteral("CancelButton"), texts::app::cancelButton()},
                                  [this] { OKButton_Click(); }),
                    grid->rowCount(), 0, 1, 2);
}

void frmNumeSenzori::OKButton_Click()
{
    QStringList names;
    for (const QLineEdit *box : m_boxes)
        names += box->text();
    renameSensors(m_station, m_settings, m_diagram, names);
    accept();
}
