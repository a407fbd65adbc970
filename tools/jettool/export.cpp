#include "tools/jettool/export.h"

#include "jet/utf8.h"
#include "jet/value_conversion.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace jettool
{
namespace
{

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char letter : text) {
        if (letter == '"')
            result += '"';
        result += letter;
    }
    return result + '"';
}

std::string jsonText(const std::string &text)
{
    std::string result = "\"";
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\') {
            result += '\\';
            result += letter;
        } else if (code < 0x20) {
            char escape[7];
            std::snprintf(escape, sizeof escape, "\\u%04x", code);
            result += escape;
        } else {
            result += letter;
        }
    }
    return result + '"';
}

/// Neither a text, a date nor bytes: its default text is a number.
bool isNumber(const jet::Value &value)
{
    return !std::holds_alternative<jet::Text>(value) &&
           !std::holds_alternative<jet::DateTime>(value) &&
           !std::holds_alternative<jet::Bytes>(value) && !std::holds_alternative<jet::Guid>(value);
}

std::string csvField(const jet::Value &value)
{
    if (const bool *flag = std::get_if<bool>(&value))
        return *flag ? "1" : "0";
    if (jet::isNull(value))
        return "";
    const std::string text = jet::defaultText(value);
    return isNumber(value) ? text : quoted(text);
}

bool isFinite(const jet::Value &value)
{
    if (const double *number = std::get_if<double>(&value))
        return std::isfinite(*number);
    if (const float *number = std::get_if<float>(&value))
        return std::isfinite(*number);
    return true;
}

std::string jsonField(const jet::Value &value)
{
    if (const bool *flag = std::get_if<bool>(&value))
        return *flag ? "true" : "false";
    if (jet::isNull(value))
        return "null";
    const std::string text = jet::defaultText(value);
    return isNumber(value) && isFinite(value) ? text : jsonText(text);
}

std::string typeName(const jet::ColumnDesign &column)
{
    switch (column.type) {
    case jet::ColumnType::Boolean:
        return "YESNO";
    case jet::ColumnType::Byte:
        return "BYTE";
    case jet::ColumnType::Integer:
        return "SHORT";
    case jet::ColumnType::Long:
        return column.autonumber ? "COUNTER" : "LONG";
    case jet::ColumnType::Currency:
        return "CURRENCY";
    case jet::ColumnType::Single:
        return "SINGLE";
    case jet::ColumnType::Double:
        return "DOUBLE";
    case jet::ColumnType::DateTime:
        return "DATETIME";
    case jet::ColumnType::Binary:
        return "BINARY(" + std::to_string(column.size) + ")";
    case jet::ColumnType::Text:
        return "TEXT(" + std::to_string(column.size) + ")";
    case jet::ColumnType::Ole:
        return "LONGBINARY";
    case jet::ColumnType::Memo:
        return "MEMO";
    case jet::ColumnType::Guid:
        return "GUID";
    case jet::ColumnType::Numeric:
        return "DECIMAL(" + std::to_string(column.precision) + ", " + std::to_string(column.scale) +
               ")";
    case jet::ColumnType::Block:
        return "BLOCK";
    }
    return "UNKNOWN";
}

std::string bracketed(const jet::Text &name)
{
    return "[" + jet::toUtf8(name) + "]";
}

} // namespace

void writeCsv(std::ostream &out, const jet::Table &table)
{
    const char *separator = "";
    for (const jet::ColumnDesign &column : table.design().columns) {
        out << separator << quoted(jet::toUtf8(column.name));
        separator = ",";
    }
    out << '\n';
    jet::Cursor cursor = table.records();
    for (jet::Row row; cursor.next();) {
        cursor.read(row);
        separator = "";
        for (const jet::Value &value : row) {
            out << separator << csvField(value);
            separator = ",";
        }
        out << '\n';
    }
}

void writeJsonLines(std::ostream &out, const jet::Table &table, JsonLine form)
{
    const bool isNamed = form == JsonLine::NamedRecord;
    const std::string start =
        isNamed ? "{\"table\": " + jsonText(jet::toUtf8(table.name())) + ", \"record\": {" : "{";
    const char *const end = isNamed ? "}}\n" : "}\n";
    std::vector<std::string> names;
    for (const jet::ColumnDesign &column : table.design().columns)
        names.push_back(jsonText(jet::toUtf8(column.name)));
    jet::Cursor cursor = table.records();
    for (jet::Row row; cursor.next();) {
        cursor.read(row);
        for (std::size_t column = 0; column < row.size(); ++column)
            out << (column == 0 ? start : ", ") << names[column] << ": " << jsonField(row[column]);
        out << end;
    }
}

void writeSchema(std::ostream &out, const jet::Table &table)
{
    const jet::TableDesign design = table.design();
    out << "CREATE TABLE " << bracketed(design.name) << " (\n";
    for (std::size_t column = 0; column < design.columns.size(); ++column)
        out << "    " << bracketed(design.columns[column].name) << ' '
            << typeName(design.columns[column])
            << (column + 1 < design.columns.size() ? ",\n" : "\n");
    out << ");\n";
    for (const jet::IndexDesign &index : design.indexes) {
        out << "CREATE " << (index.unique ? "UNIQUE " : "") << "INDEX " << bracketed(index.name)
            << " ON " << bracketed(design.name) << " (";
        const char *separator = "";
        for (const jet::IndexColumnDesign &column : index.columns) {
            out << separator << bracketed(column.column) << (column.descending ? " DESC" : "");
            separator = ", ";
        }
        out << ')';
        if (index.primary)
            out << " WITH PRIMARY";
        else if (index.required)
            out << " WITH DISALLOW NULL";
        else if (index.ignoreNulls)
            out << " WITH IGNORE NULL";
        out << ";\n";
    }
}

} // namespace jettool
