#pragma once

#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

namespace jet
{

/// An empty database in a folder of its own.
class NewDatabase : public testing::Test
{
protected:
    Table make(const TableDesign &design) { return m_database.createTable(design, kSomeDay); }
    template <typename Work>
    void inTransaction(Work &&work)
    {
        jet::inTransaction(m_database, std::forward<Work>(work));
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "autoclava1.mdb";
    Database m_database = Database::create(m_path, kSomeDay, unsynced());
};

} // namespace jet
