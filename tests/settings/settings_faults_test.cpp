#include "tests/support/station_rig.h"

#include <QtGlobal>
#ifdef Q_OS_UNIX // the faults are the system's own
#include <QDir>
#include <QScopeGuard>
#include <csignal>
#include <sys/resource.h>

using SettingsFaults = StationRig;

TEST_F(SettingsFaults, FullDiskLeavesTheOldFileOrTheNewOne)
{
    const auto save = [this] {
        settings.scrie_config({"Diagrama1.Titlu =", "NumeFisier1 ="}, {"Abur", "b.mdb"});
    };
    const auto files = [this] {
        return QDir(folder.path() + "/config").entryList(QDir::Files | QDir::Hidden);
    };
    const QByteArray before = folder.config();
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const auto unlimit = qScopeGuard([usual] { setrlimit(RLIMIT_FSIZE, &usual); });
    rlim_t bytes = 0;
    for (;; bytes += 97) { // a disk that is full from there on
        const rlimit limit{bytes, usual.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        if (errorOf(save) == 0)
            break;
        EXPECT_EQ(folder.config(), before);
        EXPECT_EQ(files(), QStringList{"config.ini"}) << "nothing half-written is left behind";
    }
    const QByteArray after = folder.config();
    EXPECT_TRUE(after.startsWith("Diagrama1.Titlu =,Abur\r\nNumeFisier1 =,b.mdb\r\nDiagrama1"));
    EXPECT_TRUE(after.endsWith(before.last(before.size() - before.indexOf("NumeFisier2 ="))));
    EXPECT_GT(bytes, 97u);
    EXPECT_EQ(files(), QStringList{"config.ini"});
}
#endif
