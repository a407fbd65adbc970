#include "acquisition/form_calibrare.h"
#include "acquisition/texts.h"
#include "app/settings/calibration.h"
#include "app/settings/settings.h"
#include "app/texts.h"
#include "platform/dialog_buttons.h"
#include "platform/operator.h"
#include "platform/twips.h"
#include "platform/window_frame.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

namespace
{

constexpr int kOffsetCharacters = 5;
constexpr int kLabelToBoxTwips = 100;

} // namespace

FormCalibrare::FormCalibrare(Station &station, Settings &settings, Operator &op, QSize screenTwips,
                             QWidget *parent)
    : QDialog(parent), m_station(station), m_settings(settings), m_operator(op)
{
    setObjectName(QStringLiteral("FormCalibrare"));
    setWindowTitle(texts::acquisition::calibrationCaption());
    fitCaption(*this);
    auto *column = new QVBoxLayout(this);
    column->addLayout(rows(), 1);
    column->addLayout(dialogButtons(
        *this, {QStringLiteral("cmdOk"), texts::acquisition::saveButton()},
        {QStringLiteral("cmdCancel"), texts::app::cancelButton()}, [this] { cmdOk_Click(); }));
    showOffsets();
    if (!m_boxes.empty())
        m_boxes.front()->selectAll();
    resize(sizeHint());
    centreOnScreen(*this, screenTwips);
}

QLayout *FormCalibrare::rows()
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(pixelsFromTwips(kLabelToBoxTwips));
    for (const Sensor &sensor : m_station.sensors) {
        const int row = static_cast<int>(m_boxes.size());
        auto *box = new QLineEdit(this);
        box->setObjectName(QStringLiteral("CalibText_%1").arg(row));
        box->setMaxLength(kOffsetCharacters);
        const QString caption = texts::acquisition::calibrationLabel(sensor.name);
        // A label with a buddy would take an "&" in the sensor's name for a mnemonic.
        box->setAccessibleName(caption);
        auto *label = new QLabel(caption, this);
        label->setObjectName(QStringLiteral("CalibLabel_%1").arg(row));
        label->setTextFormat(Qt::PlainText);
        grid->addWidget(label, row, 0, Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(box, row, 1);
        grid->setRowStretch(row, 1);
        m_boxes.push_back(box);
    }
    return grid;
}

void FormCalibrare::showOffsets()
{
    for (std::size_t i = 0; i < m_boxes.size(); ++i)
        m_boxes[i]->setText(m_station.sensors.at(i).calibrationText);
}

void FormCalibrare::cmdOk_Click()
{
    QStringList offsets;
    for (const QLineEdit *box : m_boxes)
        offsets += box->text();
    const bool valid = takeCalibrations(m_station, offsets);
    for (std::size_t i = 0; i < m_boxes.size(); ++i)
        m_boxes[i]->setText(offsets.at(static_cast<qsizetype>(i)));
    if (valid) {
        saveCalibrations(m_station, m_settings, offsets);
        accept();
    } else {
        m_operator.tell(texts::acquisition::checkCalibrations(), Operator::Icon::Exclamation);
        showOffsets();
    }
}
