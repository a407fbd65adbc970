#include "tools/make_manual/manual_text.h"

#include <QRegularExpression>

namespace
{

using Kind = Block::Kind;

QStringList cellsOf(const QString &line)
{
    QStringList cells;
    for (const QString &cell : line.mid(1, line.size() - 2).split(QLatin1Char('|')))
        cells += cell.trimmed();
    return cells;
}

Block blockOf(const QString &line)
{
    static const std::pair<QLatin1String, Kind> kMarks[] = {{QLatin1String("### "), Kind::Section},
                                                            {QLatin1String("## "), Kind::Chapter},
                                                            {QLatin1String("# "), Kind::Title},
                                                            {QLatin1String("- "), Kind::Bullet}};
    for (const auto &[mark, kind] : kMarks)
        if (line.startsWith(mark))
            return {kind, line.mid(mark.size()), {}, {}};
    if (line.startsWith(QLatin1Char('|')))
        return {Kind::Row, {}, cellsOf(line), {}};
    static const QRegularExpression kStep(QStringLiteral(R"(^\d+\. (.*)$)"));
    if (const auto step = kStep.match(line); step.hasMatch())
        return {Kind::Step, step.captured(1), {}, {}};
    static const QRegularExpression kPicture(QStringLiteral(R"(^!\[(.*)\]\((.*)\)$)"));
    if (const auto picture = kPicture.match(line); picture.hasMatch())
        return {Kind::Picture, picture.captured(1), {}, picture.captured(2)};
    return {Kind::Paragraph, line, {}, {}};
}

bool isRule(const QString &line)
{
    return line.startsWith(QLatin1String("|-"));
}

} // namespace

std::vector<Block> parseManual(const QString &source)
{
    std::vector<Block> blocks;
    bool open = false; // the next plain line goes on with the last block
    for (const QString &line : source.split(QLatin1Char('\n'))) {
        if (line.trimmed().isEmpty()) {
            open = false;
            continue;
        }
        if (isRule(line))
            continue;
        Block block = blockOf(line.trimmed());
        if (open && block.kind == Kind::Paragraph) {
            blocks.back().text += QLatin1Char(' ') + block.text;
            continue;
        }
        block.first = !open || blocks.back().kind != block.kind;
        open = block.kind == Kind::Paragraph || block.kind == Kind::Bullet ||
               block.kind == Kind::Step || block.kind == Kind::Row;
        blocks.push_back(std::move(block));
    }
    return blocks;
}

std::vector<Span> parseSpans(const QString &text)
{
    const QRegularExpression marked(QStringLiteral(R"(\*\*(.+?)\*\*|`(.+?)`)"));
    std::vector<Span> spans;
    qsizetype at = 0;
    for (auto found = marked.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        if (match.capturedStart() > at)
            spans.push_back({Span::Style::Plain, text.mid(at, match.capturedStart() - at)});
        if (match.hasCaptured(1))
            spans.push_back({Span::Style::Bold, match.captured(1)});
        else
            spans.push_back({Span::Style::Screen, match.captured(2)});
        at = match.capturedEnd();
    }
    if (at < text.size())
        spans.push_back({Span::Style::Plain, text.mid(at)});
    return spans;
}
