#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/// A station's folder in a temporary place, laid like an installation: config/config.ini as
/// shipped, mdb/arhive/, img/, res/, Doc/. Databases are put there by the tests that need them.
class StationFolder
{
public:
    StationFolder()
    {
        QDir dir(path());
        for (const char *folder : {"config", "mdb/arhive", "img", "res", "Doc"})
            dir.mkpath(QString::fromLatin1(folder));
        const QString shipped = QStringLiteral(STATION_INSTALLATION);
        EXPECT_TRUE(QFile::copy(shipped + QStringLiteral("/config/config.ini"), configPath()));
        EXPECT_TRUE(QFile::copy(shipped + QStringLiteral("/res/Warning.ico"),
                                path() + QStringLiteral("/res/Warning.ico")));
        // The installed file may be read-only in the source tree; the station's own is not.
        QFile::setPermissions(configPath(), QFile::ReadOwner | QFile::WriteOwner);
    }

    QString path() const { return m_dir.path(); }
    QString configPath() const { return path() + QStringLiteral("/config/config.ini"); }
    QByteArray config() const
    {
        QFile file(configPath());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    void setConfig(const QByteArray &content) const
    {
        QFile file(configPath());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
    }
    /// Replaces one line of the settings file: everything behind "key,".
    void setValue(const QByteArray &key, const QByteArray &value) const
    {
        QByteArray content = config();
        const qsizetype at = content.indexOf(key + ',');
        ASSERT_GE(at, 0) << key.toStdString();
        const qsizetype begin = at + key.size() + 1;
        content.replace(begin, content.indexOf("\r\n", begin) - begin, value);
        setConfig(content);
    }

private:
    QTemporaryDir m_dir;
};
