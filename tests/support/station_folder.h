#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A station's folder in a temporary place, laid like an installation: config/config.ini as
/// shipped, mdb/arhive/, img/, res/, Doc/. Databases are put there by the tests that need them.
class StationFolder
{
public:
    StationFolder();

    QString path() const { return m_dir.path(); }
    QString configPath() const { return path() + QStringLiteral("/config/config.ini"); }
    QByteArray config() const;
    void setConfig(const QByteArray &content) const;
    /// Replaces one line of the settings file: everything behind "key,".
    void setValue(const QByteArray &key, const QByteArray &value) const;

private:
    QTemporaryDir m_dir;
};
