#include "tests/support/station_folder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

StationFolder::StationFolder()
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

QByteArray StationFolder::config() const
{
    QFile file(configPath());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void StationFolder::setConfig(const QByteArray &content) const
{
    QFile file(configPath());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(content), content.size());
}

void StationFolder::setValue(const QByteArray &key, const QByteArray &value) const
{
    QByteArray content = config();
    const qsizetype at = content.indexOf(key + ',');
    ASSERT_GE(at, 0) << key.toStdString();
    const qsizetype begin = at + key.size() + 1;
    content.replace(begin, content.indexOf("\r\n", begin) - begin, value);
    setConfig(content);
}
