#pragma once

#include <QDialog>

class QLineEdit;
class Settings;
struct Station;

/// Edits the title of one diagram; accepting it changes the title.
class frmTitluDiag : public QDialog
{
    Q_OBJECT
public:
    /// Station and settings must outlive the dialog.
    frmTitluDiag(Station &station, Settings &settings, QWidget *parent = nullptr);

    /// Shows the title of a diagram, by its index into the diagram table, for editing. Throws
    /// RuntimeError 9 when there is no such diagram.
    void incarca_titlu(int diagram);

private:
    void OKButton_Click();

    Station &m_station;
    Settings &m_settings;
    std::size_t m_diagram = 0;
    QLineEdit *m_title;
};
