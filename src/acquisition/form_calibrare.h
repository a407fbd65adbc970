#pragma once

#include <QDialog>
#include <vector>

class Operator;
class QLineEdit;
class Settings;
struct Station;

/// Edits the calibration offsets, one row per entry of the sensor table. Modeless; it expects to be
/// opened as a locked dialog.
class FormCalibrare : public QDialog
{
    Q_OBJECT
public:
    /// The window is centred on a screen of that size, in twips. All must outlive it.
    FormCalibrare(Station &station, Settings &settings, Operator &op, QSize screenTwips,
                  QWidget *parent = nullptr);

private:
    QLayout *rows();
    void showOffsets();
    void cmdOk_Click();

    Station &m_station;
    Settings &m_settings;
    Operator &m_operator;
    std::vector<QLineEdit *> m_boxes;
};
