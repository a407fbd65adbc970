#include "tests/jet/sample_database.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

// Appends rows and reports each, until its end comes from outside the thread that writes: at any
// moment, with nothing put away.
//
//   appending_writer DATABASE FIRST_ID REPORTS

int main(int, char **argv)
{
    const long reports = std::stol(argv[3]);
    std::atomic<long> reported = 0;
    std::thread([&] {
        for (long seen = 0; seen < reports; seen = reported)
            reported.wait(seen);
        std::_Exit(9);
    }).detach();
    for (auto id = static_cast<std::int32_t>(std::stol(argv[2]));; ++id) {
        jet::Database::open(argv[1], jet::unsynced()).table(u"Tabel").appendRow(jet::sampleRow(id));
        std::printf("%d\n", id);
        std::fflush(stdout);
        ++reported;
        reported.notify_one();
    }
}
