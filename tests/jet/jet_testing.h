#pragma once

#include "jet/format/bytes.h"
#include "jet/format/table_definition.h"

#include <QByteArray>
#include <optional>

// What the engine's tests share: bytes written as in a hex dump, the code of a failure, columns.

namespace jet
{

inline Bytes hex(const char *dump)
{
    const QByteArray bytes = QByteArray::fromHex(dump);
    return {bytes.begin(), bytes.end()};
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

} // namespace jet
