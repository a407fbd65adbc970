#include "platform/system_information.h"

#include <QProcess>
#include <QStandardPaths>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <unistd.h>
#endif

QString systemInformationTool()
{
#ifdef Q_OS_WIN
    const QStringList tools{QStringLiteral("msinfo32")};
#else
    const QStringList tools{QStringLiteral("kinfocenter"), QStringLiteral("hardinfo2"),
                            QStringLiteral("hardinfo")};
#endif
    for (const QString &tool : tools)
        if (QString path = QStandardPaths::findExecutable(tool); !path.isEmpty())
            return path;
    return {};
}

bool startSystemInformation(const QString &tool)
{
    return !tool.isEmpty() && QProcess::startDetached(tool, {});
}

#ifdef Q_OS_WIN
qint64 physicalMemory()
{
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    return GlobalMemoryStatusEx(&memory) ? static_cast<qint64>(memory.ullTotalPhys) : 0;
}
#else
qint64 physicalMemory()
{
    return qint64{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
}
#endif
