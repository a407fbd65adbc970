#pragma once

#include <QDialog>
#include <vector>

class QLineEdit;
class Settings;
struct Station;

/// Renames the sensors of one diagram. One class serves both diagrams under the names
/// frmNumeSenzori1 and frmNumeSenzori2. Modal to the program once it is shown.
class frmNumeSenzori : public QDialog
{
    Q_OBJECT
public:
    /// `diagram`: index into the diagram table, 0 or 1. Station and settings must outlive the
    /// dialog. Throws RuntimeError 9 when there is no such diagram.
    frmNumeSenzori(int diagram, Station &station, Settings &settings, QWidget *parent = nullptr);

private:
    void incarca_senzori_form();
    void aranjare_senzori_form();
    void OKButton_Click();

    std::size_t m_diagram;
    Station &m_station;
    Settings &m_settings;
    std::vector<QWidget *> m_labels;
    std::vector<QLineEdit *> m_boxes;
};
