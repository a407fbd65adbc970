#include "platform/system_information.h"
#include "platform/runtime_error.h"

#include <QProcess>
#include <QStandardPaths>

QString systemInformationTool()
{
#ifdef Q_OS_WIN
    const QStringList tools{QStringLiteral("msinfo32")};
#else
    const QStringList tools{QStringLiteral("kinfocenter"), QStringLiteral("hardinfo2"),
                            QStringLiteral("hardinfo")};
#endif
    for (const QString &tool : tools)
        if (const QString path = QStandardPaths::findExecutable(tool); !path.isEmpty())
            return path;
    return {};
}

void startSystemInformation(const QString &tool)
{
    if (!QProcess::startDetached(tool, {}))
        throw RuntimeError(RuntimeError::FileNotFound);
}
