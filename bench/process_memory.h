#pragma once

#include <QFile>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

/// Memory of this process that is in use, in MB; 0 where the system does not say.
inline double residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
#ifdef Q_OS_UNIX
    const double pageSize = static_cast<double>(::sysconf(_SC_PAGESIZE));
#else
    const double pageSize = 4096;
#endif
    return file.readAll().split(' ').value(1).toDouble() * pageSize / (1024 * 1024);
}
