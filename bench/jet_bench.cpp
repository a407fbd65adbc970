// The engine beside SQLite doing the same work on the same disk in the same run. Absolute times say
// little, so every line ends with the ratio and the limit it has to keep.

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
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kDay = 86400; ///< samples of a day, one per second
const jet::DateTime kNow{46347.0};

int failures = 0;

double seconds(const std::function<void()> &work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The best of several runs: the others were disturbed.
double best(int runs, const std::function<void()> &work)
{
    double result = seconds(work);
    for (int i = 1; i < runs; ++i)
        result = std::min(result, seconds(work));
    return result;
}

void report(const char *what, double ours, double theirs, const char *peer, double limit)
{
    const double ratio = ours / theirs;
    const bool kept = ratio <= limit;
    failures += kept ? 0 : 1;
    std::printf("%-44s %10.3f ms  %-26s %10.3f ms  ratio %6.2f  limit %5.2f  %s\n", what,
                ours * 1e3, peer, theirs * 1e3, ratio, limit, kept ? "ok" : "MISSED");
}

jet::Row sample(int id)
{
    jet::Row row{std::int32_t{id}};
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
    double readAll()
    {
        jet::OpenOptions options = m_options;
        options.readOnly = true;
        const jet::Database database = jet::Database::open(m_path, options);
        const jet::Snapshot snapshot(database);
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
    void deleteAll()
    {
        jet::Database database = jet::Database::open(m_path, m_options);
        database.table(u"Tabel").deleteAll();
    }

private:
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
    double readAll()
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

/// Mean time of one append from open to close. Both take turns, so that what else the machine does
/// hits both.
std::pair<double, double> appendTimes(Jet &ours, Sqlite &theirs, int rows, int rounds)
{
    ours.create(rows);
    theirs.create(rows);
    std::vector<double> our;
    std::vector<double> their;
    for (int i = 1; i <= rounds; ++i) {
        our.push_back(seconds([&] { ours.appendOne(rows + i); }));
        their.push_back(seconds([&] { theirs.appendOne(rows + i); }));
    }
    const auto median = [](std::vector<double> &times) {
        std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2),
                         times.end());
        return times[times.size() / 2];
    };
    return {median(our), median(their)};
}

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

/// Forgets the peak, so that the next one shows what comes from here on.
void resetPeakMemory()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

void benchAppend(const std::filesystem::path &folder)
{
    Jet synced(folder / "synced.mdb", jet::Durability::Synced);
    Jet unsynced(folder / "unsynced.mdb", jet::Durability::Unsynced);
    Sqlite full(folder / "full.sqlite", "FULL");
    Sqlite off(folder / "off.sqlite", "OFF");
    const auto fewSynced = appendTimes(synced, full, 100, 100);
    const auto manySynced = appendTimes(synced, full, kDay, 100);
    const auto fewUnsynced = appendTimes(unsynced, off, 100, 400);
    const auto manyUnsynced = appendTimes(unsynced, off, kDay, 400);
    report("append, 100 rows, synced", fewSynced.first, fewSynced.second, "SQLite FULL", 1.0);
    report("append, 86,400 rows, synced", manySynced.first, manySynced.second, "SQLite FULL", 1.0);
    report("append, 100 rows, unsynced", fewUnsynced.first, fewUnsynced.second, "SQLite OFF", 2.0);
    report("append, 86,400 rows, unsynced", manyUnsynced.first, manyUnsynced.second, "SQLite OFF",
           2.0);
    report("append, 86,400 rows, synced", manySynced.first, fewSynced.first, "100 rows", 1.2);
    report("append, 86,400 rows, unsynced", manyUnsynced.first, fewUnsynced.first, "100 rows", 1.2);
}

void benchDay(const std::filesystem::path &folder)
{
    const auto path = folder / "day.mdb";
    Jet ours(path, jet::Durability::Synced);
    Sqlite theirs(folder / "day.sqlite", "FULL");
    ours.create(0);
    theirs.create(0);
    const double our = seconds([&] { ours.appendMany(1, kDay); });
    const double their = seconds([&] { theirs.appendMany(1, kDay); });
    report("86,400 appends in one transaction", our, their, "SQLite FULL", 3.0);

    resetPeakMemory();
    const long before = peakMemory();
    const double read = best(5, [&] { ours.readAll(); });
    const long grown = peakMemory() - before;
    const double theirRead = best(5, [&] { theirs.readAll(); });
    const double exported = best(2, [&] {
        if (std::system(("mdb-export '" + path.string() + "' Tabel > /dev/null").c_str()) != 0)
            throw std::runtime_error("mdb-export failed");
    });
    report("reading 86,400 rows", read, theirRead, "SQLite", 1.0);
    report("reading 86,400 rows", read, exported, "mdb-export", 0.1);
    std::printf("%-44s %10ld KiB above start, limit 16384  %s\n", "memory while reading", grown,
                grown < 16384 ? "ok" : "MISSED");
    failures += grown < 16384 ? 0 : 1;

    const double copied = seconds([&] { copyWithSync(path, folder / "copy.mdb"); });
    const double deleted = seconds([&] { ours.deleteAll(); });
    report("deleting 86,400 rows in one transaction", deleted, copied, "copy of the file, synced",
           3.0);
}

} // namespace

int main(int argc, char *argv[])
{
    const std::filesystem::path folder = argc > 1 ? std::filesystem::path(argv[1])
                                                  : std::filesystem::temp_directory_path() /
                                                        ("jet_bench_" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    benchAppend(folder);
    benchDay(folder);
    if (argc <= 1)
        std::filesystem::remove_all(folder);
    return failures == 0 ? 0 : 1;
}
