#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <cups/cups.h>

/// A print service of its own for this thread, with two queues that print into nothing: "Takes",
/// and "Refuses", which accepts no jobs.
class PrintService
{
public:
    PrintService()
    {
        write("cupsd.conf", "Listen @/socket\nBrowsing No\n<Location />\nAllow all\n</Location>\n");
        write("cups-files.conf",
              "ServerRoot @\nRequestRoot @\nCacheDir @\nStateDir @\nTempDir @\n"
              "ErrorLog @/log\nAccessLog @/log\nPageLog @/log\nFileDevice Yes\n");
        write("printers.conf", queue("Takes", "Yes") + queue("Refuses", "No"));
        cupsSetServer(path("socket").toLocal8Bit());
        m_daemon.start("/usr/sbin/cupsd",
                       {"-f", "-c", path("cupsd.conf"), "-s", path("cups-files.conf")});
    }
    ~PrintService()
    {
        cupsSetServer(nullptr);
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }
    bool isThere() const
    {
        return QTest::qWaitFor([this] { return QFile::exists(path("socket")); }, 20'000);
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    void write(const char *name, QByteArray content) const
    {
        QFile file(path(name));
        file.open(QIODevice::WriteOnly);
        file.write(content.replace("@", m_folder.path().toLocal8Bit()));
    }
    static QByteArray queue(const QByteArray &name, const QByteArray &accepting)
    {
        return "<Printer " + name + ">\nDeviceURI file:/dev/null\nState Idle\nAccepting " +
               accepting + "\n</Printer>\n";
    }

    QTemporaryDir m_folder;
    QProcess m_daemon;
};
