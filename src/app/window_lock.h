#pragma once

#include <QObject>
#include <vector>

class QMainWindow;
class QWidget;

/// Disables the main window's menus and every window but one modeless dialog while that is open. A
/// disabled window refuses to be closed. Whoever opens the dialog calls release() when it closes.
class WindowLock final : public QObject
{
    Q_OBJECT
public:
    struct ItemState {
        QString name;
        bool enabled;
    };

    /// The main window must outlive the lock.
    explicit WindowLock(QMainWindow &window) : m_window(window) {}

    /// salveaza_stare_meniu, then menus off, then every other window off.
    void lock(const QWidget &dialog);
    /// Menus as they were, every other window on.
    void release(const QWidget &dialog);
    /// Disables a window, which refuses to be closed from then on.
    void disable(QWidget &frame);
    void enable(QWidget &frame);

    /// Records the name and enabled state of every menu item, submenus included, in StareMeniu.
    void salveaza_stare_meniu();
    /// Disables every menu item, or enables those whose recorded state was enabled, and with them
    /// the bar: its corner has the buttons of a maximised window.
    void seteaza_meniu(bool enable);
    /// Sets the enabled state of every open window of the program but the main one and `dialog`.
    void activeaza_ferestre(const QWidget &dialog, bool enable);

protected:
    /// Refuses to close a disabled window: window systems and shortcuts would.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QMainWindow &m_window;
    std::vector<ItemState> StareMeniu;
};
