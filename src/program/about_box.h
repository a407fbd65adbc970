#pragma once

#include <QDialog>

class Operator;

/// What this program is: title, version, description, the libraries it uses with their licences,
/// and a button for the system's information tool; where there is none, or it does not start, a
/// message tells what the toolkit knows. Modeless; destroyed when closed.
class AboutBox : public QDialog
{
    Q_OBJECT
public:
    /// `systemTool`: path of the information tool, empty for none. `op` must outlive the box.
    AboutBox(const QString &title, const QString &version, const QString &systemTool, Operator &op,
             QWidget *parent = nullptr);

private:
    void cmdSysInfo_Click(const QString &systemTool);

    Operator &m_operator;
};
