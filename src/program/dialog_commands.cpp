#include "program/dialog_commands.h"
#include "acquisition/form_calibrare.h"
#include "acquisition/form_eroare.h"
#include "app/mdiform1.h"
#include "app/screen_size.h"
#include "diagrams/frm_istoric.h"
#include "dialogs/frm_nume_senzori.h"
#include "dialogs/frm_opt_diag.h"
#include "dialogs/frm_titlu_diag.h"
#include "platform/window_frame.h"

#include <QDialog>
#include <QScreen>
#include <QWindow>

DialogCommands::DialogCommands(Station &station, Settings &settings, Operator &op,
                               const Clock &clock, MDIForm1 &window)
    : m_station(station), m_settings(settings), m_operator(op), m_clock(clock), m_window(window),
      m_lock(window)
{
}

QSize DialogCommands::screenTwips() const
{
    const ScreenSize screen = dimensiuni_ecran(m_window.screen()->size());
    return {screen.LatimeEcran, screen.InaltimeEcran};
}

void DialogCommands::openLocked(QDialog *dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::finished, this, [this, dialog] { release(dialog); });
    m_activeBefore = m_window.activeChild();
    dialog->show();
    dialog->activateWindow();
    m_lock.lock(*dialog);
    m_locked = dialog;
}

bool DialogCommands::disableBehindLockedDialog(QWidget &window)
{
    if (m_locked)
        m_lock.disable(*frameOf(window));
    return m_locked;
}

void DialogCommands::closeLocked(QWidget &window)
{
    QWidget &frame = *frameOf(window);
    m_lock.enable(frame);
    frame.close();
}

void DialogCommands::release(QDialog *dialog)
{
    m_locked = nullptr;
    m_lock.release(*dialog);
    emit released();
    if (m_activeBefore)
        m_window.activate(m_activeBefore);
}

void DialogCommands::openModal(QDialog *dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

void DialogCommands::openWithDefaults(DefaultsDialog *dialog)
{
    connect(dialog, &DefaultsDialog::refused, this,
            [this, dialog](const QString &message) { arata_eroare(*dialog, message); });
    openLocked(dialog);
}

void DialogCommands::openOptions(int diagram, OptionTab tab)
{
    auto *dialog =
        new frmOptDiag(diagram, m_station, m_settings, m_clock, screenTwips(), &m_window);
    dialog->selectTab(tab);
    openWithDefaults(dialog);
}

void DialogCommands::openCalibration()
{
    openLocked(new FormCalibrare(m_station, m_settings, m_operator, screenTwips(), &m_window));
}

void DialogCommands::openHistoryLimits()
{
    openWithDefaults(new FrmIstoric(m_station, m_settings, screenTwips(), &m_window));
}

void DialogCommands::openSensorNames(int diagram)
{
    openModal(new frmNumeSenzori(diagram, m_station, m_settings, &m_window));
}

QDialog *DialogCommands::openTitle(int diagram)
{
    auto *dialog = new frmTitluDiag(m_station, m_settings, &m_window);
    dialog->incarca_titlu(diagram);
    openModal(dialog);
    return dialog;
}

void DialogCommands::arata_eroare(QWidget &caller, const QString &message)
{
    if (!m_formEroare) {
        m_formEroare = new FormEroare(m_station, screenTwips(), &m_window);
        m_formEroare->setWindowFlag(Qt::Dialog);
    }
    // The window system knows nothing of disabled windows: one click on the dialog would raise it
    // over a message that is only the main window's, and nothing could be answered any more.
    m_formEroare->winId(); // the window of the system, which every closing takes away
    m_formEroare->windowHandle()->setTransientParent(caller.window()->windowHandle());
    m_formEroare->arata_eroare(caller, message);
}
