#include "app/settings/config_text.h"

#include <QStringDecoder>
#include <algorithm>
#include <array>

namespace
{

constexpr QByteArrayView kByteOrderMark("\xEF\xBB\xBF");
constexpr QByteArrayView kLineBreak("\r\n");

/// Code page 1252 for bytes 0x80 to 0x9F; the five unassigned ones stay control characters.
constexpr std::array<char16_t, 32> kCodePage1252{
    u'\u20AC', u'\u0081', u'\u201A', u'\u0192', u'\u201E', u'\u2026', u'\u2020', u'\u2021',
    u'\u02C6', u'\u2030', u'\u0160', u'\u2039', u'\u0152', u'\u008D', u'\u017D', u'\u008F',
    u'\u0090', u'\u2018', u'\u2019', u'\u201C', u'\u201D', u'\u2022', u'\u2013', u'\u2014',
    u'\u02DC', u'\u2122', u'\u0161', u'\u203A', u'\u0153', u'\u009D', u'\u017E', u'\u0178'};

QString decoded(QByteArrayView bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    QString ansi = QString::fromLatin1(bytes);
    for (QChar &c : ansi)
        if (c.unicode() >= 0x80 && c.unicode() <= 0x9F)
            c = QChar(kCodePage1252[c.unicode() - 0x80u]);
    return ansi;
}

QByteArrayView withoutByteOrderMark(QByteArrayView file)
{
    return file.startsWith(kByteOrderMark) ? file.sliced(kByteOrderMark.size()) : file;
}

bool isLineEnd(char c)
{
    return c == '\r' || c == '\n';
}

/// Steps over one line break: CR LF, or a CR or LF alone.
qsizetype afterLineBreak(QByteArrayView file, qsizetype at)
{
    const bool pair = file[at] == '\r' && at + 1 < file.size() && file[at + 1] == '\n';
    return at + (pair ? 2 : 1);
}

class FieldReader
{
public:
    explicit FieldReader(QByteArrayView file) : m_file(file) {}

    bool atEnd() const { return m_at >= m_file.size(); }

    QString next()
    {
        while (!atEnd() && (m_file[m_at] == ' ' || m_file[m_at] == '\t'))
            ++m_at;
        if (const qsizetype close = closingQuote(); close > m_at)
            return quoted(close);
        const QByteArrayView field = upToSeparator();
        skipSeparator();
        return decoded(field);
    }

private:
    /// Where a quoted field that begins here ends. A quote that is never closed in its line is part
    /// of the text: one quote in a sensor's name must not swallow the settings below it.
    qsizetype closingQuote() const
    {
        if (atEnd() || m_file[m_at] != '"')
            return -1;
        qsizetype at = m_at + 1;
        while (at < m_file.size() && m_file[at] != '"' && !isLineEnd(m_file[at]))
            ++at;
        return at < m_file.size() && m_file[at] == '"' ? at : -1;
    }

    QString quoted(qsizetype close)
    {
        const QByteArrayView field = m_file.sliced(m_at + 1, close - m_at - 1);
        m_at = close + 1;
        upToSeparator(); // skips what follows the closing quote
        skipSeparator();
        return decoded(field);
    }

    QByteArrayView upToSeparator()
    {
        const qsizetype begin = m_at;
        while (!atEnd() && m_file[m_at] != ',' && !isLineEnd(m_file[m_at]))
            ++m_at;
        return m_file.sliced(begin, m_at - begin);
    }

    void skipSeparator()
    {
        if (atEnd())
            return;
        m_at = m_file[m_at] == ',' ? m_at + 1 : afterLineBreak(m_file, m_at);
    }

    QByteArrayView m_file;
    qsizetype m_at = 0;
};

QList<QByteArrayView> linesOf(QByteArrayView file)
{
    QList<QByteArrayView> lines;
    for (qsizetype at = 0; at < file.size();) {
        const qsizetype begin = at;
        while (at < file.size() && !isLineEnd(file[at]))
            ++at;
        lines.append(file.sliced(begin, at - begin));
        if (at < file.size())
            at = afterLineBreak(file, at);
    }
    return lines;
}

bool beginsWithKey(QByteArrayView line, const QString &key)
{
    return decoded(line).startsWith(key, Qt::CaseInsensitive);
}

} // namespace

std::optional<QString> valueOfKey(const QByteArray &file, const QString &key)
{
    FieldReader fields(withoutByteOrderMark(file));
    while (!fields.atEnd()) {
        const bool found = fields.next() == key;
        if (fields.atEnd())
            return std::nullopt;
        if (found)
            return fields.next();
    }
    return std::nullopt;
}

std::optional<QByteArray> withKeysReplaced(const QByteArray &file, const QStringList &keys,
                                           const QStringList &lines)
{
    QList<QByteArrayView> old = linesOf(withoutByteOrderMark(file));
    // Reading the last line reaches the end of the file, so nothing is ever found there.
    const auto searchable = old.isEmpty() ? old.cend() : std::prev(old.cend());
    for (const QString &key : keys)
        if (std::none_of(old.cbegin(), searchable,
                         [&](QByteArrayView line) { return beginsWithKey(line, key); }))
            return std::nullopt;

    QByteArray text;
    for (const QString &line : lines)
        text.append(line.toUtf8()).append(kLineBreak);
    while (!old.isEmpty() && old.last().isEmpty())
        old.removeLast();
    for (const QByteArrayView line : std::as_const(old))
        if (std::none_of(keys.cbegin(), keys.cend(),
                         [&](const QString &key) { return beginsWithKey(line, key); }))
            text.append(line).append(kLineBreak);
    return text.append(kLineBreak);
}
