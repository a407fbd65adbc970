#pragma once

#include <QString>

class PosedStation;
class QWidget;

/// Takes the pictures of docs/img: each window is opened by its own command and saved under its
/// name.
class Photographer
{
public:
    /// `suffix` goes before the files' ending. Every function throws std::runtime_error when a
    /// window does not open or its picture cannot be saved.
    Photographer(PosedStation &station, QString folder, QString suffix = {});

    /// The main window and the windows inside it.
    void takeWindows() const;
    /// The dialogs that belong to the acquisition and to the live diagrams.
    void takeDialogs() const;
    void takeHistoryLimits() const;
    void takeAboutBox() const;

private:
    /// Opens a dialog by a menu item, takes it and closes it.
    void takeDialog(const QString &item, const QString &dialog, const QString &detail = {}) const;
    void takeTitleDialog() const;
    void takeHistory() const;
    void takeAndClose(const QString &dialog, const QString &detail = {}) const;
    void save(QWidget &window, const QString &name) const;

    PosedStation &m_station;
    QString m_folder;
    QString m_suffix;
};
