#include "tools/screenshots/photographer.h"
#include "app/texts.h"
#include "diagrams/form1.h"
#include "diagrams/form_ado_chart.h"
#include "platform/message_box_operator.h"
#include "program/texts.h"
#include "tools/screenshots/posed_station.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTimer>
#include <stdexcept>

namespace
{

template <typename Window>
Window &opened(PosedStation &station, const QString &name)
{
    auto *window = station.window().findChild<Window *>(name);
    if (!window)
        throw std::runtime_error(name.toStdString() + " did not open");
    return *window;
}

} // namespace

Photographer::Photographer(PosedStation &station, QString folder, QString suffix)
    : m_station(station), m_folder(std::move(folder)), m_suffix(std::move(suffix))
{
}

void Photographer::takeAll() const
{
    save(m_station.window(), QStringLiteral("main_window"));
    save(opened<QMdiSubWindow>(m_station, QStringLiteral("Form2Frame")), QStringLiteral("Form2"));
    takeWindow(QStringLiteral("DeschidMdbCurent"), QStringLiteral("FormMdb"));
    takeHistory();
    takeDialogs();
    takeErrorWindow();
    takeMessage();
}

void Photographer::takeDialogs() const
{
    for (const QString &diagram : {QStringLiteral("Temp"), QStringLiteral("Pres")}) {
        const QString options = QStringLiteral("frmOptDiag%1").arg(diagram == "Temp" ? 1 : 2);
        takeDialog("Limit" + diagram + "Graf", options, QStringLiteral("_LimiteGrafic"));
        takeDialog("Alarm" + diagram + "Graf", options, QStringLiteral("_SetAlarme"));
        m_station.showInstalledFolder(true);
        takeDialog("Scan" + diagram + "Graf", options, QStringLiteral("_OptiuniScanare"));
        m_station.showInstalledFolder(false);
    }
    takeDialog(QStringLiteral("mnuNumeSenzori1"), QStringLiteral("frmNumeSenzori1"));
    takeDialog(QStringLiteral("mnuNumeSenzori2"), QStringLiteral("frmNumeSenzori2"));
    takeDialog(QStringLiteral("MeniuCalib"), QStringLiteral("FormCalibrare"));
    takeDialog(QStringLiteral("MeniuIstoric"), QStringLiteral("FrmIstoric"));
    takeDialog(QStringLiteral("DespreProg"), QStringLiteral("frmAbout"));
    takeTitleDialog();
}

void Photographer::takeWindow(const QString &item, const QString &form) const
{
    m_station.choose(item);
    auto &frame = opened<QMdiSubWindow>(m_station, form + QStringLiteral("Frame"));
    save(frame, form);
    frame.close();
    settle();
}

void Photographer::takeErrorWindow() const
{
    m_station.choose(QStringLiteral("ScanTempGraf"));
    auto &options = opened<QDialog>(m_station, QStringLiteral("frmOptDiag1"));
    options.findChild<QLineEdit *>(QStringLiteral("ScanText"))->setText(QStringLiteral("zece"));
    options.findChild<QPushButton *>(QStringLiteral("cmdApply"))->click();
    settle();
    auto &error = opened<QWidget>(m_station, QStringLiteral("FormEroare"));
    save(error, error.objectName());
    error.close();
    options.close();
    settle();
}

void Photographer::takeMessage() const
{
    // The box waits for its answer: it is taken from inside its event loop.
    QTimer::singleShot(0, [this] {
        settle();
        QWidget *box = QApplication::activeModalWidget();
        save(*box, QStringLiteral("message"));
        box->close();
    });
    MessageBoxOperator(texts::app::applicationTitle()).ask(texts::program::askArchiveNow());
}

void Photographer::takeDialog(const QString &item, const QString &dialog,
                              const QString &detail) const
{
    m_station.choose(item);
    takeAndClose(dialog, detail);
}

void Photographer::takeTitleDialog() const
{
    emit opened<Form1>(m_station, QStringLiteral("Form1")).titleEditRequested(0);
    settle();
    takeAndClose(QStringLiteral("frmTitluDiag"));
}

void Photographer::takeHistory() const
{
    m_station.choose(QStringLiteral("DeschidGenerator"));
    auto &history = opened<FormAdoChart>(m_station, QStringLiteral("FormAdoChart"));
    opened<QLineEdit>(m_station, QStringLiteral("Text1"))
        .setText(m_station.archivedDay().toString(QStringLiteral("dd.MM.yyyy")));
    history.Command1_Click();
    settle();
    QWidget &frame = *history.parentWidget();
    save(frame, history.objectName());
    frame.close();
    settle();
}

void Photographer::takeAndClose(const QString &dialog, const QString &detail) const
{
    auto &window = opened<QDialog>(m_station, dialog);
    save(window, dialog + detail);
    window.close();
    settle();
}

void Photographer::save(QWidget &window, const QString &name) const
{
    const QString path = QDir(m_folder).filePath(name + m_suffix + QStringLiteral(".png"));
    if (!window.grab().save(path))
        throw std::runtime_error(path.toStdString() + " could not be saved");
}
