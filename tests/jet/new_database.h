#pragma once

#include "tests/jet/mdbtools.h"
#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

namespace jet
{

/// A place for a database in a folder of its own.
class DatabaseFile : public testing::Test
{
protected:
    Database open(bool readOnly = false) const
    {
        return Database::open(m_path, unsynced(readOnly));
    }

    const QTemporaryDir m_temporary;
    const std::filesystem::path m_folder = m_temporary.path().toStdU16String();
    const std::filesystem::path m_path = m_folder / "autoclava1.mdb";
};

/// An empty database there.
class NewDatabase : public DatabaseFile
{
protected:
    Table make(const TableDesign &design) { return m_database.createTable(design, kSomeDay); }
    template <typename Work>
    void inTransaction(Work &&work)
    {
        jet::inTransaction(m_database, std::forward<Work>(work));
    }

    Database m_database = Database::create(m_path, kSomeDay, unsynced());
};

} // namespace jet
