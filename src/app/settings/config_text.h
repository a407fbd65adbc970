#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

/// The grammar of the settings file, on its bytes.
///
/// A file is read in two ways. As fields: a field ends at a comma or at the end of a line, leading
/// blanks are skipped, a field that begins with a double quote ends at the closing quote if its
/// line has one. As lines: a line belongs to a key when it begins with it, in any letter case.
///
/// Each piece is UTF-8 when it is valid UTF-8, otherwise Windows code page 1252, the form of old
/// installations.

/// The value field behind the first field that equals `key` exactly. Nothing when no field does, or
/// when the file ends with that field.
std::optional<QString> valueOfKey(const QByteArray &file, const QString &key);

/// The file with `lines` (key + "," + value each) put first, in their order, and every line that
/// begins with one of `keys` dropped; other lines keep their bytes and order. Lines end with CR LF
/// and the file with one empty line: a key on the very last line could never be written again.
/// Nothing when a key is on no line, or only on the last one.
std::optional<QByteArray> withKeysReplaced(const QByteArray &file, const QStringList &keys,
                                           const QStringList &lines);
