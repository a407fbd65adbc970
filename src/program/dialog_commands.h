#pragma once

#include "app/settings/settings.h"
#include "app/window_lock.h"

#include <QObject>
#include <QPointer>

class Clock;
class DefaultsDialog;
class FormEroare;
class MDIForm1;
class Operator;
class QDialog;

/// Opens the configuration dialogs: options, history limits and calibration as locked dialogs,
/// names and title modal. A dialog is destroyed when it closes; closing a locked one unlocks menus
/// and windows.
class DialogCommands final : public QObject
{
    Q_OBJECT
public:
    /// All must outlive this object.
    DialogCommands(Station &station, Settings &settings, Operator &op, const Clock &clock,
                   MDIForm1 &window);

    /// The options of a diagram (from 0), on that tab.
    void openOptions(int diagram, OptionTab tab);
    void openSensorNames(int diagram);
    /// Returns the dialog; when it is accepted the diagram has its new title.
    QDialog *openTitle(int diagram);
    void openCalibration();
    void openHistoryLimits();
    /// A window that opens behind a locked dialog is disabled like the others; false when no dialog
    /// is locked.
    bool disableBehindLockedDialog(QWidget &window);
    /// Closes a window, behind a locked dialog too.
    void closeLocked(QWidget &window);

signals:
    /// A locked dialog has closed: menus and windows are unlocked.
    void released();

private:
    QSize screenTwips() const;
    void openModal(QDialog *dialog);
    void openLocked(QDialog *dialog);
    /// Opens it locked, with its refusals in the error window.
    void openWithDefaults(DefaultsDialog *dialog);
    /// Shows a message in the error window, which stays in front of `caller`, a form that is shown.
    void arata_eroare(QWidget &caller, const QString &message);
    /// Unlocks menus and windows again.
    void release(QDialog *dialog);

    Station &m_station;
    Settings &m_settings;
    Operator &m_operator;
    const Clock &m_clock;
    MDIForm1 &m_window;
    WindowLock m_lock;
    QPointer<QDialog> m_locked;
    QPointer<QWidget> m_activeBefore; ///< a disabled window loses its place in front
    QPointer<FormEroare> m_formEroare;
};
