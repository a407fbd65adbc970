#pragma once

#include "platform/operator.h"
#include "platform/printers.h"
#include "platform/shell.h"
#include "program/program.h"

/// A clock that stands still until it is set.
class StoppedClock final : public Clock
{
public:
    QDateTime now() const override { return moment; }
    QDateTime moment = wallTime(QDate(2026, 3, 8), QTime(9, 5));
};

/// Pictures are taken unattended: every message or question is a failure.
class AbsentOperator final : public Operator
{
public:
    [[noreturn]] void tell(const QString &text, Icon icon) override;
    [[noreturn]] Answer ask(const QString &text) override;
};

class NoShell final : public Shell
{
public:
    void open(const QString &, Window) override {}
};

/// One printer, which prints into a PDF document.
class DocumentPrinter final : public Printers
{
public:
    explicit DocumentPrinter(QString path) : m_path(std::move(path)) {}

    QStringList names() const override { return {m_path}; }
    QString defaultDevice() const override { return m_path; }
    void setDefaultDevice(const QString &) override {}
    std::unique_ptr<PrintJob> choose() override;

private:
    QString m_path;
};

/// The real program in the middle of a sterilisation, with the day before archived. It needs no
/// recorder and its clock stands still, so that a picture changes only when a window does.
class PosedStation
{
public:
    /// `folder`: a newly installed station, which is written to; `printedPage`: the document that
    /// printing creates. Throws std::runtime_error when a message had to be shown.
    PosedStation(const QString &folder, const QString &printedPage);

    MDIForm1 &window() { return m_program.window(); }
    /// Chooses the menu item of that name and lets the windows settle.
    void choose(const QString &item);
    /// Makes a dialog that shows the station's folder show the same path on every machine.
    void showInstalledFolder(bool installed);
    QDate archivedDay() const;

private:
    void archiveYesterday();
    void drawMorning();
    void showMonitoring();

    QString m_folder;
    StoppedClock m_clock;
    AbsentOperator m_operator;
    NoShell m_shell;
    DocumentPrinter m_printer;
    Program m_program;
};

/// Processes all pending events, deferred deletions included.
void settle();
