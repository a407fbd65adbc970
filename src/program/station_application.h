#pragma once

#include <QApplication>
#include <functional>

/// The application handles failures that nothing else caught: it writes them to standard error,
/// shows the runtime error report and ends the program with exit code 1.
class StationApplication final : public QApplication
{
    Q_OBJECT
public:
    StationApplication(int &argc, char **argv);

    bool notify(QObject *receiver, QEvent *event) override;

    /// Runs `action`; a failure in it is reported and ends the program.
    template <typename Action>
    void guard(Action &&action)
    {
        try {
            action();
        } catch (...) {
            reportAndEnd();
        }
    }

    /// Shows the report to the operator and returns once it is closed.
    std::function<void(const QString &report)> showReport;

signals:
    /// A failure is about to end the program: timers and monitoring have to stop now.
    void failing();

private:
    /// Reports the exception that is being handled.
    void reportAndEnd();

    bool m_ending = false;
};
