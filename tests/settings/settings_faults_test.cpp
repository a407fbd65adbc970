#include "tests/support/station_rig.h"

#include <QtGlobal>
#ifdef Q_OS_UNIX // the faults are the system's own
#include <QDir>
#include <QFile>
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr uid_t kNobody = 65534;

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

class SettingsFaults : public StationRig
{
protected:
    /// Number of the error that a save ended with, 0 for none.
    int trySave()
    {
        return errorOf([this] {
            settings.scrie_config({"Diagrama1.Titlu =", "NumeFisier1 ="}, {"Abur", "b.mdb"});
        });
    }
    /// The same as a user whom file permissions bind, which they do not bind root.
    int trySaveAsOrdinaryUser()
    {
        if (geteuid() != 0)
            return trySave();
        const pid_t child = fork();
        if (child == 0)
            _exit(setuid(kNobody) == 0 ? trySave() : 255);
        int status = 0;
        waitpid(child, &status, 0);
        return WEXITSTATUS(status);
    }
    void expectOnly(const QByteArray &content)
    {
        EXPECT_EQ(folder.config(), content);
        EXPECT_EQ(QDir(folder.path() + "/config").entryList(QDir::Files | QDir::Hidden),
                  QStringList{"config.ini"})
            << "nothing half-written is left behind";
    }
};

} // namespace

TEST_F(SettingsFaults, FullDiskLeavesTheOldFileOrTheNewOne)
{
    const QByteArray before = folder.config();
    rlim_t bytes = 0;
    for (;; bytes += 97) {
        const FileSizeLimit limit(bytes);
        if (trySave() == 0)
            break;
        expectOnly(before);
    }
    const QByteArray after = folder.config();
    EXPECT_TRUE(after.startsWith("Diagrama1.Titlu =,Abur\r\nNumeFisier1 =,b.mdb\r\nDiagrama1"));
    EXPECT_TRUE(after.endsWith(before.last(before.size() - before.indexOf("NumeFisier2 ="))));
    EXPECT_GT(bytes, 97u);
    expectOnly(after);
}

TEST_F(SettingsFaults, ReadOnlyFileOrFolderIsRefusedUntouched)
{
    const QByteArray before = folder.config();
    const QByteArray config = QFile::encodeName(folder.configPath());
    const QByteArray configFolder = QFile::encodeName(folder.path() + "/config");
    const auto permit = [](const QByteArray &path, mode_t mode) {
        EXPECT_EQ(chmod(path.constData(), mode), 0);
    };
    for (const QByteArray &path : {QFile::encodeName(folder.path()), configFolder, config}) {
        const uid_t owner = geteuid() == 0 ? kNobody : geteuid();
        ASSERT_EQ(chown(path.constData(), owner, gid_t(-1)), 0);
    }

    permit(config, 0444);
    EXPECT_EQ(trySaveAsOrdinaryUser(), RuntimeError::PathFileAccess);
    expectOnly(before);
    permit(config, 0644);
    permit(configFolder, 0555);
    EXPECT_EQ(trySaveAsOrdinaryUser(), RuntimeError::PathFileAccess);
    expectOnly(before);
    permit(configFolder, 0755);
    EXPECT_EQ(trySaveAsOrdinaryUser(), 0);
    EXPECT_NE(folder.config(), before);
}
#endif
