#include "tests/jet/memory_database.h"
#include "tests/jet/new_database.h"

#include <tuple>

// The program itself, as a user types it.

namespace jet
{
namespace
{

class Jettool : public DatabaseFile
{
protected:
    /// What it prints, and its exit code on the last line.
    static std::string run(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), JETTOOL);
        const Outcome outcome = jet::run(arguments);
        return outcome.output + "exit " + std::to_string(outcome.status) + '\n';
    }
};

/// Leaves the files of a database as a program does that was stopped while it appended a sample.
void interruptAppend(const std::filesystem::path &path, std::int32_t id)
{
    MemoryDisk disk;
    disk[kFile] = bytesOf(path);
    interrupt(disk, [&](Database &database) { appendSamples(database.table(u"Tabel"), id, id); });
    writeFile(path, disk[kFile]);
    writeFile(journalPath(path), disk[kJournal]);
}

TEST_F(Jettool, LooksAtAnInterruptedStatementWithoutFinishingItAndCompacts)
{
    EXPECT_EQ(run({"create", m_path.string()}), "exit 0\n");
    EXPECT_NE(run({"create", m_path.string()}).find("3204"), std::string::npos);
    {
        Database database = open();
        inTransaction(database, [&] { makeTabel(database, 2000); });
        database.table(u"Tabel").deleteAll();
        appendSamples(database.table(u"Tabel"), 1, 39);
    }
    interruptAppend(m_path, 40);
    const auto state = [&] { return std::pair(bytesOf(m_path), bytesOf(journalPath(m_path))); };
    const auto left = state();
    ASSERT_NE(left.second, Bytes());
    EXPECT_EQ(run({"tables", m_path.string()}), "Tabel\nexit 0\n");
    EXPECT_EQ(run({"count", m_path.string(), "tabel"}), "40\nexit 0\n");
    std::error_code failure; // some systems have no links
    std::filesystem::create_symlink(m_path, m_folder / "link.mdb", failure);
    const auto name = failure ? m_path : m_folder / "link.mdb";
    EXPECT_EQ(run({"check", name.string()}), "exit 0\n");
    const std::string csv = run({"dump", "--csv", m_path.string(), "Tabel"});
    EXPECT_TRUE(csv.starts_with("\"Id\",\"Senzor1\"")) << csv.substr(0, 80);
    EXPECT_NE(csv.find("\n7,24.5,25.5,26.5,27.5,28.5,29.5,\"Yes\",\"2026-11-21\",\"00:00:07\"\n"),
              std::string::npos);
    EXPECT_NE(run({"schema", m_path.string()})
                  .find("CREATE UNIQUE INDEX [IndexPrimar] ON [Tabel] ([Id]) WITH PRIMARY;"),
              std::string::npos);
    EXPECT_TRUE(state() == left) << "reading finishes no statement";

    EXPECT_EQ(run({"compact", m_path.string()}), "exit 0\n");
    EXPECT_LT(std::filesystem::file_size(m_path), left.first.size() / 2);
    EXPECT_EQ(run({"dump", m_path.string(), "Tabel"}), csv);
    EXPECT_EQ(run({"check", m_path.string()}), "exit 0\n");
    EXPECT_EQ(mdbCount(m_path, "Tabel"), "40\n");
}

TEST_F(Jettool, DumpsEveryTableInLinesThatNameIt)
{
    Database database = Database::create(m_path, kSomeDay, unsynced());
    for (const char16_t *name : {u"Unu", u"Doi \""}) {
        Table table = database.createTable(
            {name, {{u"Nr", ColumnType::Long}, {u"table", ColumnType::Text}}, {}}, kSomeDay);
        table.append({{u"Nr", 1}, {u"table", u"a\n\\\"ș"}});
        table.append(Assignments{{u"Nr", 2}});
    }
    const std::string first = R"({"Nr": 1, "table": "a\u000a\\\"ș"})";
    const std::string second = R"({"Nr": 2, "table": null})";
    EXPECT_EQ(run({"dump", "--json", m_path.string(), "Unu"}),
              first + '\n' + second + "\nexit 0\n");
    const auto named = [](const std::string &table, const std::string &record) {
        return R"({"table": ")" + table + R"(", "record": )" + record + "}\n";
    };
    EXPECT_EQ(run({"dump", "--json", m_path.string()}),
              named("Unu", first) + named("Unu", second) + named(R"(Doi \")", first) +
                  named(R"(Doi \")", second) + "exit 0\n");
    const std::string table = "\"Nr\",\"table\"\n1,\"a\n\\\"\"ș\"\n2,\n";
    EXPECT_EQ(run({"dump", m_path.string()}),
              "# Unu\n" + table + "# Doi \"\n" + table + "exit 0\n");
}

TEST_F(Jettool, NamesThePageAndTheReasonOfDamageAndNotesLostSpace)
{
    makeTabel(m_path, 5);
    Bytes bytes = bytesOf(m_path);
    const auto unused = static_cast<PageNo>(bytes.size() / kPageSize);
    bytes.resize(bytes.size() + kPageSize);
    FileImage image(bytes);
    image.setMapBit({kGlobalMapPage, 0}, unused, false);
    writeFile(m_path, image.bytes());
    EXPECT_EQ(run({"check", m_path.string()}),
              "note: pages that belong to nothing until the file is compacted: 1\nexit 0\n");

    const PageNo root = image.definition().realIndexes.front().root;
    image.page(root)[kEntryArea + 4] ^= 1; // the key of the first entry
    writeFile(m_path, image.bytes());
    const std::string output = run({"check", m_path.string()});
    EXPECT_TRUE(output.starts_with("page " + std::to_string(root) + ": ")) << output;
    EXPECT_TRUE(output.ends_with("exit 1\n")) << output;
}

TEST_F(Jettool, NamesMayBeOfAnyForm)
{
    // The last one's draft and journal would have the names of those before.
    const char *const names[] = {"autoclava1.new", "autoclava1.ldb", "plain.new",
                                 "plain.compact",  "plain.jrn",      "plain"};
    for (const char *name : names) {
        EXPECT_EQ(run({"create", (m_folder / name).string()}), "exit 0\n");
        EXPECT_EQ(run({"compact", (m_folder / name).string()}), "exit 0\n");
    }
    for (const char *name : names)
        EXPECT_EQ(run({"check", (m_folder / name).string()}), "exit 0\n") << name;
#ifndef _WIN32
    std::filesystem::create_symlink(m_folder / "nowhere.mdb", m_path);
    EXPECT_TRUE(run({"create", m_path.string()}).starts_with("jettool: 3204 "));
    EXPECT_TRUE(std::filesystem::is_symlink(m_path));
    const std::string pipe = (m_folder / "pipe.mdb").string();
    ASSERT_EQ(jet::run({"mkfifo", pipe}).status, 0);
    const Outcome outcome = jet::run({"timeout", "20", JETTOOL, "tables", pipe});
    EXPECT_TRUE(outcome.output.starts_with("jettool: 3051 ")) << outcome.output;
    EXPECT_EQ(outcome.status, 1);
#endif
}

#ifndef _WIN32
TEST_F(Jettool, CompactionByAMemberOfTheGroupKeepsTheGroup)
{
    const std::string folder = m_path.parent_path().string();
    if (jet::run({"chown", "0:54321", folder}).status != 0)
        GTEST_SKIP() << "only root can act for two users";
    makeTabel(m_path, 5);
    ASSERT_EQ(jet::run({"chown", "-R", "0:54321", folder}).status, 0);
    ASSERT_EQ(jet::run({"chmod", "-R", "g=rwX,o=", folder}).status, 0);
    const Outcome compacted = jet::run({"setpriv", "--reuid=54322", "--regid=54322",
                                        "--groups=54321", JETTOOL, "compact", m_path.string()});
    EXPECT_EQ(compacted.status, 0) << compacted.output;
    EXPECT_EQ(jet::run({"stat", "-c", "%U:%g %a", m_path.string()}).output, "UNKNOWN:54321 660\n");
}
#endif

TEST_F(Jettool, SaysWhatIsWrong)
{
    writeFile(m_path, Bytes(5000, 'x'));
    const std::tuple<std::vector<std::string>, const char *, const char *> cases[] = {
        {{"tables", "/nowhere/x.mdb"}, "jettool: 3024 Could not find file", "\nexit 1\n"},
        {{"check", m_path.string()}, "jettool: 3343 ", "\nexit 1\n"},
        {{}, "jettool: no command\n\nusage: jettool", "\nexit 2\n"},
        {{"frobnicate"}, "jettool: unknown command 'frobnicate'\n\nusage:", "\nexit 2\n"},
        {{"count", m_path.string()}, "jettool: too few arguments\n\nusage:", "\nexit 2\n"},
        {{"check", "a", "b"}, "jettool: too many arguments\n\nusage:", "\nexit 2\n"},
        {{"dump", "--csv", "--json", "a"}, "jettool: either --csv or --json", "\nexit 2\n"},
        {{"check", "--json", "a"}, "jettool: unknown option '--json'", "\nexit 2\n"},
        {{"--help"}, "usage: jettool COMMAND FILE", "\nexit 0\n"},
    };
    for (const auto &[arguments, start, end] : cases) {
        const std::string output = run(arguments);
        EXPECT_TRUE(output.starts_with(start)) << output;
        EXPECT_TRUE(output.ends_with(end)) << output;
    }
}

} // namespace
} // namespace jet
