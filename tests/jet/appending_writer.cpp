#include "tests/jet/sample_database.h"

#include <cstdio>

// Appends rows and reports each, until it is killed or nobody listens.
//
//   appending_writer DATABASE FIRST_ID

int main(int, char **argv)
{
    for (std::int32_t id = std::stoi(argv[2]); std::fflush(stdout) == 0; ++id) {
        jet::Database::open(argv[1], jet::unsynced()).table(u"Tabel").appendRow(jet::sampleRow(id));
        std::printf("%d\n", id);
    }
}
