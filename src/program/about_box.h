#pragma once

#include <QDialog>

class Operator;

/// The About box: title, version, description, the libraries with their licences, and a button for
/// the system's information tool. If that is missing or does not start, a message shows what the
/// toolkit knows of the system. Modeless; destroyed when closed.
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
