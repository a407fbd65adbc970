#pragma once

#include <QString>

class PosedStation;
class QWidget;

/// Takes the pictures of docs/img: each window is opened by its own command and saved under its
/// name.
class Photographer
{
public:
    /// `suffix` is appended to the files' base names. Every function throws std::runtime_error when
    /// a window does not open or its picture cannot be saved.
    Photographer(PosedStation &station, QString folder, QString suffix = {});

    /// Every window, and one message box.
    void takeAll() const;

private:
    void takeDialogs() const;
    /// Opens a window of the main window by a menu item, takes it and closes it.
    void takeWindow(const QString &item, const QString &form) const;
    /// Opens a dialog by a menu item, takes it and closes it.
    void takeDialog(const QString &item, const QString &dialog, const QString &detail = {}) const;
    void takeTitleDialog() const;
    void takeErrorWindow() const;
    void takeMessage() const;
    void takeHistory() const;
    void takeAndClose(const QString &dialog, const QString &detail = {}) const;
    void save(QWidget &window, const QString &name) const;

    PosedStation &m_station;
    QString m_folder;
    QString m_suffix;
};
