#pragma once

#include "jet/bytes.h"
#include "jet/table_definition.h"

#include <charconv>
#include <optional>
#include <sstream>
#include <string>

// What the engine's tests share: bytes written as in a hex dump, the code of a failure, columns.

namespace jet
{

inline Bytes hex(const std::string &dump)
{
    Bytes bytes;
    std::istringstream words(dump);
    for (std::string word; words >> word;) {
        std::uint8_t byte = 0;
        std::from_chars(word.data(), word.data() + word.size(), byte, 16);
        bytes.push_back(byte);
    }
    return bytes;
}

/// The code of the jet::Error a statement throws; nothing when it throws none.
template <typename Statement>
std::optional<ErrorCode> errorOf(Statement &&statement)
{
    try {
        statement();
        return std::nullopt;
    } catch (const Error &error) {
        return error.code();
    }
}

inline ColumnDefinition column(std::u16string_view name, ColumnType type, std::uint16_t length = 0)
{
    ColumnDefinition result;
    result.name = name;
    result.type = type;
    result.length = length;
    return result;
}

/// The measurement table as the dumps of real files show it: definition on page 16.
inline TableDefinition tabelDefinition()
{
    TableDefinition table;
    table.columns = {column(u"Id", ColumnType::Long)};
    for (char16_t digit = u'1'; digit <= u'6'; ++digit)
        table.columns.push_back(column(std::u16string(u"Senzor") + digit, ColumnType::Double));
    table.columns.push_back(column(u"Alarma", ColumnType::Text, 20));
    table.columns.push_back(column(u"Data", ColumnType::DateTime));
    table.columns.push_back(column(u"Ora", ColumnType::DateTime));
    layOutColumns(table);
    table.ownedPages = {17, 0};
    table.freeSpacePages = {17, 1};
    RealIndex tree;
    tree.columns = {{0, true}};
    tree.usageMap = {17, 2};
    tree.root = 18;
    tree.flags = IndexFlag::Always | IndexFlag::Required | IndexFlag::Unique;
    table.realIndexes = {tree};
    LogicalIndex index;
    index.name = u"IndexPrimar";
    index.kind = LogicalIndexKind::Primary;
    table.logicalIndexes = {index};
    return table;
}

} // namespace jet
