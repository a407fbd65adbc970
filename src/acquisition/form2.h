#pragma once

#include "platform/window_frame.h"

#include <QWidget>

class MonitoringCycle;
class QLabel;
struct Station;

/// The control centre: starts and stops monitoring and shows whether it runs. Closing the window
/// does not stop monitoring.
class Form2 : public QWidget
{
    Q_OBJECT
public:
    /// All must outlive this window. It opens at `position` and saves its position there when it
    /// closes.
    Form2(MonitoringCycle &cycle, const Station &station, WindowPosition &position,
          QWidget *parent = nullptr);

    /// Throws RuntimeError like MonitoringCycle::start().
    void StartMonCommand_Click();
    void StopMonCommand_Click();
    void InitDiagCommand_Click();
    void scrie_stare_monitor();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void addButton(const QString &name, const QString &caption, void (Form2::*handler)());

    MonitoringCycle &m_cycle;
    const Station &m_station;
    WindowPosition &m_position;
    QLabel *m_monLabel;
    bool m_placed = false;
};
