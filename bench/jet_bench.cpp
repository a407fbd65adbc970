// The engine beside SQLite doing the same work on the same disk in the same run. Absolute times say
// little, so every line ends with the ratio and the limit it has to keep; ends with 1 beyond one.

#include "bench/report.h"
#include "jet/database.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kDay = 86400; ///< samples of a day, one per second
const jet::DateTime kNow{46347.0};

double milliseconds(const std::function<void()> &work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Work whose time counts, and what has to be done before each time and does not.
struct Contestant {
    std::function<void()> work;
    std::function<void()> prepare = [] {};
};

/// The median time of each. They take turns, so that what else the machine does hits all of them.
std::vector<double> inTurns(int rounds, const std::vector<Contestant> &contestants)
{
    std::vector<std::vector<double>> times(contestants.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            contestants[i].prepare();
            times[i].push_back(milliseconds(contestants[i].work));
        }
    }
    std::vector<double> medians;
    for (std::vector<double> &each : times) {
        std::ranges::nth_element(each, each.begin() + rounds / 2);
        medians.push_back(each[static_cast<std::size_t>(rounds / 2)]);
    }
    return medians;
}

jet::Row sample(int id)
{
    jet::Row row;
    row.reserve(10);
    row.emplace_back(std::int32_t{id});
    for (int sensor = 1; sensor <= 6; ++sensor)
        row.push_back(20.0 + id * 0.001 + sensor);
    row.push_back(id % 100 == 0 ? jet::Value(jet::Text(u"Yes")) : jet::Value());
    row.push_back(jet::DateTime{46347.0});
    row.push_back(jet::DateTime{id / 86400.0});
    return row;
}

jet::TableDesign design()
{
    jet::TableDesign table;
    table.name = u"Tabel";
    table.columns.push_back({u"Id", jet::ColumnType::Long});
    for (char16_t digit = u'1'; digit <= u'6'; ++digit)
        table.columns.push_back({jet::Text(u"Senzor") + digit, jet::ColumnType::Double});
    table.columns.push_back({u"Alarma", jet::ColumnType::Text, 10});
    table.columns.push_back({u"Data", jet::ColumnType::DateTime});
    table.columns.push_back({u"Ora", jet::ColumnType::DateTime});
    table.indexes.push_back({u"IndexPrimar", {{u"Id"}}, true});
    return table;
}

class Jet
{
public:
    Jet(std::filesystem::path path, jet::Durability durability) : m_path(std::move(path))
    {
        m_options.durability = durability;
    }

    void create(int rows)
    {
        std::filesystem::remove(m_path);
        jet::Database database = jet::Database::create(m_path, kNow, m_options);
        database.createTable(design(), kNow);
        appendMany(1, rows);
    }
    void appendMany(int first, int last)
    {
        jet::Database database = jet::Database::open(m_path, m_options);
        jet::Transaction transaction(database);
        jet::Table table = database.table(u"Tabel");
        for (int id = first; id <= last; ++id)
            table.appendRow(sample(id));
        transaction.commit();
    }
    void appendOne(int id) { appendMany(id, id); }
    double readInSnapshot() const
    {
        const jet::Database database = openForReading();
        const jet::Snapshot snapshot(database);
        return readAll(database);
    }
    /// Others may change the file between any two records.
    double readShared() const { return readAll(openForReading()); }
    void deleteAll()
    {
        jet::Database database = jet::Database::open(m_path, m_options);
        database.table(u"Tabel").deleteAll();
    }
    void deleteByCursor()
    {
        jet::Database database = jet::Database::open(m_path, m_options);
        jet::Transaction transaction(database);
        for (jet::Cursor cursor = database.table(u"Tabel").records(); cursor.next();)
            cursor.erase();
        transaction.commit();
    }

private:
    jet::Database openForReading() const
    {
        jet::OpenOptions options = m_options;
        options.readOnly = true;
        return jet::Database::open(m_path, options);
    }
    static double readAll(const jet::Database &database)
    {
        jet::Cursor cursor = database.table(u"Tabel").records();
        double sum = 0;
        for (jet::Row row; cursor.next();) {
            cursor.read(row);
            for (const jet::Value &value : row) {
                if (const double *number = std::get_if<double>(&value))
                    sum += *number;
            }
        }
        return sum;
    }
    std::filesystem::path m_path;
    jet::OpenOptions m_options;
};

class Sqlite
{
public:
    Sqlite(std::filesystem::path path, const char *synchronous)
        : m_path(std::move(path)), m_synchronous(synchronous)
    {
    }

    void create(int rows)
    {
        std::filesystem::remove(m_path);
        const Connection connection(*this);
        connection.run("CREATE TABLE Tabel (Id INTEGER PRIMARY KEY, Senzor1 REAL, Senzor2 REAL, "
                       "Senzor3 REAL, Senzor4 REAL, Senzor5 REAL, Senzor6 REAL, Alarma TEXT, "
                       "Data REAL, Ora REAL)");
        appendMany(1, rows);
    }
    void appendMany(int first, int last)
    {
        const Connection connection(*this);
        connection.run("BEGIN IMMEDIATE");
        sqlite3_stmt *insert = connection.prepare("INSERT INTO Tabel VALUES (?,?,?,?,?,?,?,?,?,?)");
        for (int id = first; id <= last; ++id) {
            sqlite3_bind_int(insert, 1, id);
            for (int sensor = 1; sensor <= 6; ++sensor)
                sqlite3_bind_double(insert, 1 + sensor, 20.0 + id * 0.001 + sensor);
            if (id % 100 == 0)
                sqlite3_bind_text(insert, 8, "Yes", -1, SQLITE_STATIC);
            else
                sqlite3_bind_null(insert, 8);
            sqlite3_bind_double(insert, 9, 46347.0);
            sqlite3_bind_double(insert, 10, id / 86400.0);
            if (sqlite3_step(insert) != SQLITE_DONE)
                throw std::runtime_error("SQLite refused a row");
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        connection.run("COMMIT");
    }
    void appendOne(int id) { appendMany(id, id); }
    double readAll() const
    {
        const Connection connection(*this);
        sqlite3_stmt *select = connection.prepare("SELECT * FROM Tabel");
        double sum = 0;
        while (sqlite3_step(select) == SQLITE_ROW) {
            for (int column = 0; column < 10; ++column) {
                if (column == 0)
                    sum += sqlite3_column_int(select, column);
                else if (column == 7)
                    sum += sqlite3_column_text16(select, column) != nullptr ? 1 : 0;
                else
                    sum += sqlite3_column_double(select, column);
            }
        }
        sqlite3_finalize(select);
        return sum;
    }
    void deleteEach(int rows)
    {
        const Connection connection(*this);
        connection.run("BEGIN IMMEDIATE");
        sqlite3_stmt *remove = connection.prepare("DELETE FROM Tabel WHERE Id = ?");
        for (int id = 1; id <= rows; ++id) {
            sqlite3_bind_int(remove, 1, id);
            if (sqlite3_step(remove) != SQLITE_DONE)
                throw std::runtime_error("SQLite did not delete a row");
            sqlite3_reset(remove);
        }
        sqlite3_finalize(remove);
        connection.run("COMMIT");
    }

private:
    class Connection
    {
    public:
        explicit Connection(const Sqlite &owner)
        {
            if (sqlite3_open(owner.m_path.c_str(), &m_handle) != SQLITE_OK)
                throw std::runtime_error("SQLite cannot open its file");
            run(("PRAGMA journal_mode=DELETE; PRAGMA synchronous=" + owner.m_synchronous).c_str());
        }
        ~Connection() { sqlite3_close(m_handle); }
        Connection(const Connection &) = delete;
        Connection &operator=(const Connection &) = delete;

        void run(const char *statement) const
        {
            if (sqlite3_exec(m_handle, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
                throw std::runtime_error(sqlite3_errmsg(m_handle));
        }
        sqlite3_stmt *prepare(const char *text) const
        {
            sqlite3_stmt *statement = nullptr;
            if (sqlite3_prepare_v2(m_handle, text, -1, &statement, nullptr) != SQLITE_OK)
                throw std::runtime_error(sqlite3_errmsg(m_handle));
            return statement;
        }

    private:
        sqlite3 *m_handle = nullptr;
    };

    std::filesystem::path m_path;
    std::string m_synchronous;
};

void copyWithSync(const std::filesystem::path &from, const std::filesystem::path &to)
{
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
    const int file = ::open(to.c_str(), O_RDWR | O_CLOEXEC);
    ::fsync(file);
    ::close(file);
}

/// Peak memory of this process so far, in KiB.
long peakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::strtol(line.c_str() + 6, nullptr, 10);
    }
    return 0;
}

constexpr const char *kMeasureReading = "--memory-while-reading";

/// In a process that does nothing else: how far its memory grows while it reads a file.
int measureReading(const char *path)
{
    const long before = peakMemory();
    Jet(path, jet::Durability::Synced).readInSnapshot();
    std::printf("%ld\n", peakMemory() - before);
    return 0;
}

void reportMemoryWhileReading(Report &report, const std::filesystem::path &path)
{
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    FILE *const child =
        popen(("'" + program + "' " + kMeasureReading + " '" + path.string() + "'").c_str(), "r");
    long grown = 0;
    if (child == nullptr || std::fscanf(child, "%ld", &grown) != 1 || pclose(child) != 0)
        throw std::runtime_error("the process that measures memory failed");
    report.atMost("memory grown by reading 86,400 rows", static_cast<double>(grown) / 1024, "MiB",
                  16);
}

/// One append from open to close, to a short and to a long table.
void benchAppend(Report &report, const std::filesystem::path &folder, jet::Durability durability,
                 const std::string &synchronous, int rounds, double limit)
{
    constexpr int kFew = 100;
    Jet few(folder / "few.mdb", durability);
    Jet many(folder / "many.mdb", durability);
    Sqlite theirFew(folder / "few.sqlite", synchronous.c_str());
    Sqlite theirMany(folder / "many.sqlite", synchronous.c_str());
    few.create(kFew);
    theirFew.create(kFew);
    many.create(kDay);
    theirMany.create(kDay);
    int next = kDay; // each works on a table of its own, so one number serves all
    const std::vector<double> times =
        inTurns(rounds, {{[&] { few.appendOne(next); }, [&] { ++next; }},
                         {[&] { theirFew.appendOne(next); }},
                         {[&] { many.appendOne(next); }},
                         {[&] { theirMany.appendOne(next); }}});
    const std::string how = durability == jet::Durability::Synced ? "synced" : "unsynced";
    const std::string peer = "SQLite " + synchronous;
    report.ratio("append to 100 rows, " + how, times[0], peer, times[1], limit);
    report.ratio("append to 86,400 rows, " + how, times[2], peer, times[3], limit);
    report.ratio("append to 86,400 rows, " + how, times[2], "to 100 rows", times[0], 1.2);
}

void benchDay(Report &report, const std::filesystem::path &folder)
{
    constexpr int kRounds = 5;
    const auto path = folder / "day.mdb";
    Jet ours(path, jet::Durability::Synced);
    Sqlite theirs(folder / "day.sqlite", "FULL");
    const std::vector<double> appended =
        inTurns(kRounds, {{[&] { ours.appendMany(1, kDay); }, [&] { ours.create(0); }},
                          {[&] { theirs.appendMany(1, kDay); }, [&] { theirs.create(0); }}});
    report.ratio("86,400 appends in one transaction", appended[0], "SQLite FULL", appended[1], 1.0);

    const auto mdbExport = [&] {
        if (std::system(("mdb-export '" + path.string() + "' Tabel > /dev/null").c_str()) != 0)
            throw std::runtime_error("mdb-export failed");
    };
    // A process of its own between the others would empty the caches for the one after it.
    const std::vector<double> exported = inTurns(kRounds, {{mdbExport}});
    const std::vector<double> read = inTurns(3 * kRounds, {{[&] { ours.readInSnapshot(); }},
                                                           {[&] { ours.readShared(); }},
                                                           {[&] { theirs.readAll(); }}});
    report.ratio("reading 86,400 rows in a Snapshot", read[0], "SQLite", read[2], 0.40);
    report.ratio("reading 86,400 rows without one", read[1], "SQLite", read[2], 2.0);
    report.ratio("reading 86,400 rows in a Snapshot", read[0], "mdb-export", exported[0], 0.1);
    reportMemoryWhileReading(report, path);

    const auto copy = folder / "copy.mdb";
    const auto theirCopy = folder / "copy.sqlite";
    Jet full(copy, jet::Durability::Synced);
    Sqlite theirFull(theirCopy, "FULL");
    const auto refill = [&] { copyWithSync(path, copy); };
    const auto theirRefill = [&] { copyWithSync(folder / "day.sqlite", theirCopy); };
    const std::vector<double> deleted =
        inTurns(kRounds, {{refill},
                          {[&] { full.deleteAll(); }, refill},
                          {[&] { full.deleteByCursor(); }, refill},
                          {[&] { theirFull.deleteEach(kDay); }, theirRefill}});
    report.ratio("deleting all of 86,400 rows", deleted[1], "synced copy of the file", deleted[0],
                 0.5);
    report.ratio("deleting 86,400 rows one by one", deleted[2], "SQLite FULL", deleted[3], 2.0);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 3 && std::string_view(argv[1]) == kMeasureReading)
        return measureReading(argv[2]);
    const std::filesystem::path folder = argc > 1 ? std::filesystem::path(argv[1])
                                                  : std::filesystem::temp_directory_path() /
                                                        ("jet_bench_" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    Report report;
    benchAppend(report, folder, jet::Durability::Synced, "FULL", 100, 0.60);
    benchAppend(report, folder, jet::Durability::Unsynced, "OFF", 400, 1.0);
    benchDay(report, folder);
    if (argc <= 1)
        std::filesystem::remove_all(folder);
    return report.exitCode();
}
