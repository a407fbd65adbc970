#pragma once

#include <QApplication>
#include <functional>

/// The application: the place where a failure that nobody caught ends. It is written to standard
/// error and shown as the runtime error report, then the program ends with exit code 1.
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

    /// Shows the report to the operator and returns when it was read.
    std::function<void(const QString &report)> showReport;

signals:
    /// A failure ends the program; whatever acts by itself has to stop now.
    void failing();

private:
    /// Reports the exception that is being handled.
    void reportAndEnd();

    bool m_ending = false;
};
