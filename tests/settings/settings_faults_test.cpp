#include "tests/support/station_rig.h"

#include <QtGlobal>
#ifdef Q_OS_UNIX // the faults are the system's own
#include <QDir>
#include <csignal>
#include <sys/resource.h>

namespace
{

/// No file of this process grows beyond `bytes`: a disk that is full from there on.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit{bytes, m_old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_old); }
    Q_DISABLE_COPY_MOVE(FileSizeLimit)

private:
    rlimit m_old{};
};

using SettingsFaults = StationRig;

} // namespace

TEST_F(SettingsFaults, FullDiskLeavesTheOldFileOrTheNewOne)
{
    const auto save = [this] {
        settings.scrie_config({"Diagrama1.Titlu =", "NumeFisier1 ="}, {"Abur", "b.mdb"});
    };
    const auto files = [this] {
        return QDir(folder.path() + "/config").entryList(QDir::Files | QDir::Hidden);
    };
    const QByteArray before = folder.config();
    rlim_t bytes = 0;
    for (;; bytes += 97) {
        const FileSizeLimit limit(bytes);
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
