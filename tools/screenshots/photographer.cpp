#include "tools/screenshots/photographer.h"
#include "diagrams/form1.h"
#include "diagrams/form_ado_chart.h"
#include "tools/screenshots/posed_station.h"

#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QMdiSubWindow>
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

void Photographer::takeWindows() const
{
    save(m_station.window(), QStringLiteral("main_window"));
    save(opened<QMdiSubWindow>(m_station, QStringLiteral("Form2Frame")), QStringLiteral("Form2"));
    takeHistory();
}

void Photographer::takeDialogs() const
{
    takeDialog(QStringLiteral("MeniuCalib"), QStringLiteral("FormCalibrare"));
    const QString options = QStringLiteral("frmOptDiag1");
    takeDialog(QStringLiteral("LimitTempGraf"), options, QStringLiteral("_LimiteGrafic"));
    takeDialog(QStringLiteral("AlarmTempGraf"), options, QStringLiteral("_SetAlarme"));
    m_station.showInstalledFolder(true);
    takeDialog(QStringLiteral("ScanTempGraf"), options, QStringLiteral("_OptiuniScanare"));
    m_station.showInstalledFolder(false);
    takeDialog(QStringLiteral("mnuNumeSenzori1"), QStringLiteral("frmNumeSenzori1"));
    takeTitleDialog();
}

void Photographer::takeHistoryLimits() const
{
    takeDialog(QStringLiteral("MeniuIstoric"), QStringLiteral("FrmIstoric"));
}

void Photographer::takeAboutBox() const
{
    takeDialog(QStringLiteral("DespreProg"), QStringLiteral("frmAbout"));
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
