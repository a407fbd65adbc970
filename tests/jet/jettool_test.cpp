#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

#include <fstream>

// The program itself, as a user types it.

namespace jet
{
namespace
{

class Jettool : public testing::Test
{
protected:
    /// What it prints, and its exit code on the last line.
    static std::string run(const std::vector<std::string> &arguments)
    {
        std::string line = std::string("'") + JETTOOL + "'";
        for (const std::string &word : arguments)
            line += " '" + word + "'";
        return outputOf({"sh", "-c", shellWord(line + " 2>&1; echo exit $?")});
    }
    /// outputOf() puts words into quotes, so those inside have to be closed and opened again.
    static std::string shellWord(std::string line)
    {
        for (std::size_t at = 0; (at = line.find('\'', at)) != std::string::npos; at += 4)
            line.replace(at, 1, "'\\''");
        return line;
    }
    static std::string bytesOf(const std::filesystem::path &path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "autoclava1.mdb";
};

TEST_F(Jettool, LooksChecksAndCompacts)
{
    EXPECT_EQ(run({"create", m_path.string()}), "exit 0\n");
    EXPECT_NE(run({"create", m_path.string()}).find("3204"), std::string::npos);
    {
        Database database = Database::open(m_path, unsynced());
        Table table = database.createTable(tabelDesign(), kSomeDay);
        Transaction transaction(database);
        appendSamples(table, 1, 2000);
        transaction.commit();
        Transaction second(database);
        for (Cursor cursor = table.records(); cursor.next();) {
            if (std::get<std::int32_t>(cursor.value(0)) % 50 != 7)
                cursor.erase();
        }
        second.commit();
    }
    const std::string before = bytesOf(m_path);
    EXPECT_EQ(run({"tables", m_path.string()}), "Tabel\nexit 0\n");
    EXPECT_EQ(run({"count", m_path.string(), "tabel"}), "40\nexit 0\n");
    EXPECT_EQ(run({"check", m_path.string()}), "exit 0\n");
    const std::string csv = run({"dump", m_path.string(), "Tabel"});
    EXPECT_TRUE(csv.starts_with("\"Id\",\"Senzor1\"")) << csv.substr(0, 80);
    EXPECT_NE(csv.find("\n7,24.5,25.5,26.5,27.5,28.5,29.5,\"Yes\",\"2026-11-21\",\"00:00:07\"\n"),
              std::string::npos);
    EXPECT_NE(run({"dump", "--json", m_path.string()}).find("\"Alarma\": \"Yes\""),
              std::string::npos);
    EXPECT_NE(run({"schema", m_path.string()})
                  .find("CREATE UNIQUE INDEX [IndexPrimar] ON [Tabel] ([Id]) WITH PRIMARY;"),
              std::string::npos);
    EXPECT_EQ(bytesOf(m_path), before) << "reading changes nothing";

    EXPECT_EQ(run({"compact", m_path.string()}), "exit 0\n");
    EXPECT_LT(std::filesystem::file_size(m_path), before.size() / 2);
    EXPECT_EQ(run({"dump", m_path.string(), "Tabel"}), csv);
    EXPECT_EQ(run({"check", m_path.string()}), "exit 0\n");
    EXPECT_EQ(mdbCount(m_path, "Tabel"), "40\n");
}

TEST_F(Jettool, SaysWhatIsWrong)
{
    std::ofstream(m_path) << "no database at all";
    const std::pair<std::vector<std::string>, const char *> cases[] = {
        {{"tables", "/nowhere/x.mdb"}, "jettool: 3024 Could not find file"},
        {{"tables", m_path.string()}, "jettool: 3343 "},
        {{"frobnicate"}, "usage: jettool"},
        {{"count", m_path.string()}, "usage: jettool"},
    };
    for (const auto &[arguments, expected] : cases) {
        const std::string output = run(arguments);
        EXPECT_NE(output.find(expected), std::string::npos) << output;
        EXPECT_EQ(output.find("exit 0"), std::string::npos) << output;
    }
}

} // namespace
} // namespace jet
