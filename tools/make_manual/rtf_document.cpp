#include "tools/make_manual/rtf_document.h"

#include <QImage>
#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace
{

using Kind = Block::Kind;

// Twips.
constexpr int kPageWidth = 11906;
constexpr int kPageHeight = 16838;
constexpr int kMargin = 1304;
constexpr int kTextWidth = kPageWidth - 2 * kMargin;
constexpr int kTwipsPerPixel = 15;
constexpr int kIndent = 360;

// Characters, as column widths go.
constexpr int kNarrowColumn = 15;
constexpr int kWideColumn = 60;

QByteArray escaped(const QString &text)
{
    QByteArray rtf;
    for (const QChar c : text) {
        const ushort unit = c.unicode();
        if (c == QLatin1Char('\\') || c == QLatin1Char('{') || c == QLatin1Char('}'))
            rtf += '\\' + QByteArray(1, c.toLatin1());
        else if (unit < 0x80)
            rtf += c.toLatin1();
        else // a signed 16-bit number, and "?" for readers that do not know it
            rtf += "\\u" + QByteArray::number(static_cast<qint16>(unit)) + '?';
    }
    return rtf;
}

QByteArray spans(const QString &text)
{
    QByteArray rtf;
    for (const Span &span : parseSpans(text)) {
        switch (span.style) {
        case Span::Style::Plain:
            rtf += escaped(span.text);
            break;
        case Span::Style::Bold:
            rtf += "{\\b " + escaped(span.text) + '}';
            break;
        case Span::Style::Screen:
            rtf += "{\\b\\cf2 " + escaped(span.text) + '}';
            break;
        }
    }
    return rtf;
}

QByteArray paragraph(const QByteArray &format, const QByteArray &content)
{
    return "{\\pard" + format + ' ' + content + "\\par}\n";
}

QByteArray bookmarkOf(int chapter)
{
    return "cap" + QByteArray::number(chapter);
}

class Writer
{
public:
    Writer(const std::vector<Block> &blocks, const ReadPicture &readPicture)
        : m_blocks(blocks), m_readPicture(readPicture)
    {
    }

    QByteArray document()
    {
        QByteArray rtf = prologue();
        for (m_at = 0; m_at < m_blocks.size(); ++m_at)
            rtf += write(m_blocks[m_at]);
        return rtf + "}\n";
    }

private:
    static QByteArray prologue()
    {
        return "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\\deflang1048\n"
               "{\\fonttbl{\\f0\\fswiss Arial;}}\n"
               "{\\colortbl;\\red31\\green73\\blue125;\\red80\\green50\\blue20;"
               "\\red221\\green230\\blue240;}\n"
               "{\\stylesheet{\\s0\\f0\\fs22 Normal;}"
               "{\\s1\\outlinelevel0\\b\\fs34\\cf1 heading 1;}"
               "{\\s2\\outlinelevel1\\b\\fs26\\cf1 heading 2;}}\n"
               "\\paperw" +
               QByteArray::number(kPageWidth) + "\\paperh" + QByteArray::number(kPageHeight) +
               margins() +
               "\\viewkind1\n{\\footer\\pard\\qc\\fs18\\cf2 \\chpgn\\par}\n\\f0\\fs22\n";
    }

    static QByteArray margins()
    {
        QByteArray rtf;
        for (const char *side : {"\\margl", "\\margr", "\\margt", "\\margb"})
            rtf += side + QByteArray::number(kMargin);
        return rtf;
    }

    QByteArray write(const Block &block)
    {
        switch (block.kind) {
        case Kind::Title:
            return paragraph("\\sb1200\\sa480\\qc\\b\\fs48\\cf1", spans(block.text)) + contents();
        case Kind::Chapter:
            return chapter(block);
        case Kind::Section:
            return paragraph("\\s2\\outlinelevel1\\keepn\\sb240\\sa100\\b\\fs26\\cf1",
                             spans(block.text));
        case Kind::Paragraph:
            return paragraph("\\sa140\\sl276\\slmult1", spans(block.text));
        case Kind::Bullet:
            return item("\\bullet", block);
        case Kind::Step:
            m_step = block.first ? 1 : m_step + 1;
            return item(QByteArray::number(m_step) + '.', block);
        case Kind::Row:
            return row(block);
        case Kind::Picture:
            return picture(block);
        }
        return {};
    }

    /// Links to the chapters; the title page stands alone.
    QByteArray contents() const
    {
        QByteArray rtf = paragraph("\\sa160\\b\\fs28\\cf1", "Cuprins");
        int number = 0;
        for (const Block &block : m_blocks) {
            if (block.kind != Kind::Chapter)
                continue;
            ++number;
            rtf += paragraph("\\sa80", "{\\field{\\*\\fldinst HYPERLINK \\\\l \"" +
                                           bookmarkOf(number) + "\"}{\\fldrslt " +
                                           QByteArray::number(number) + ". " + escaped(block.text) +
                                           "}}");
        }
        return rtf + paragraph("\\fs12", {});
    }

    QByteArray chapter(const Block &block)
    {
        ++m_chapter;
        const QByteArray bookmark = bookmarkOf(m_chapter);
        return paragraph("\\s1\\outlinelevel0" + QByteArray(m_chapter == 1 ? "\\pagebb" : "") +
                             "\\keepn\\sb480\\sa200\\b\\fs34\\cf1",
                         "{\\*\\bkmkstart " + bookmark + "}" + QByteArray::number(m_chapter) +
                             ". " + spans(block.text) + "{\\*\\bkmkend " + bookmark + "}");
    }

    static QByteArray item(const QByteArray &mark, const Block &block)
    {
        const QByteArray indent = QByteArray::number(kIndent);
        return paragraph("\\fi-" + indent + "\\li" + indent + "\\tx" + indent +
                             "\\sa80\\sl264\\slmult1",
                         mark + "\\tab " + spans(block.text));
    }

    /// Right edges of a table's columns: each as wide as its longest text asks for.
    std::vector<int> columnEdges() const
    {
        std::vector<int> weights(static_cast<std::size_t>(m_blocks[m_at].cells.size()));
        for (std::size_t row = m_at; row < m_blocks.size(); ++row) {
            const Block &block = m_blocks[row];
            if (block.kind != Kind::Row || (block.first && row > m_at))
                break;
            for (std::size_t column = 0; column < weights.size(); ++column) {
                const auto length =
                    static_cast<int>(block.cells.value(static_cast<qsizetype>(column)).size());
                weights[column] =
                    std::max(weights[column], std::clamp(length, kNarrowColumn, kWideColumn));
            }
        }
        const int sum = std::accumulate(weights.begin(), weights.end(), 0);
        std::vector<int> edges;
        int before = 0;
        for (const int weight : weights) {
            before += weight;
            edges.push_back(kTextWidth * before / sum);
        }
        return edges;
    }

    QByteArray row(const Block &block)
    {
        if (block.first)
            m_edges = columnEdges();
        QByteArray rtf = "{\\trowd\\trgaph90\\trkeep" + QByteArray(block.first ? "\\trhdr" : "");
        for (const int edge : m_edges) {
            for (const char *side : {"\\clbrdrt", "\\clbrdrl", "\\clbrdrb", "\\clbrdrr"})
                rtf += side + QByteArray("\\brdrs\\brdrw10\\brdrcf2");
            if (block.first)
                rtf += "\\clcbpat3";
            rtf += "\\cellx" + QByteArray::number(edge);
        }
        for (std::size_t column = 0; column < m_edges.size(); ++column)
            rtf += "\n{\\pard\\intbl\\sb50\\sa50\\fs20" + QByteArray(block.first ? "\\b " : " ") +
                   spans(block.cells.value(static_cast<qsizetype>(column))) + "\\cell}";
        rtf += "\n\\row}\n";
        const bool last = m_at + 1 == m_blocks.size() || m_blocks[m_at + 1].kind != Kind::Row;
        return last ? rtf + paragraph("\\fs12", {}) : rtf;
    }

    QByteArray picture(const Block &block) const
    {
        const QByteArray png = m_readPicture(block.file);
        const QImage image = QImage::fromData(png, "PNG");
        if (image.isNull())
            throw std::runtime_error("not a picture: " + block.file.toStdString());
        const int width = std::min(kTextWidth, image.width() * kTwipsPerPixel);
        const int height = image.height() * width / image.width();
        const QByteArray size = "\\picw" + QByteArray::number(image.width()) + "\\pich" +
                                QByteArray::number(image.height()) + "\\picwgoal" +
                                QByteArray::number(width) + "\\pichgoal" +
                                QByteArray::number(height);
        return paragraph("\\qc\\sb160\\keepn",
                         "{\\pict\\pngblip" + size + '\n' + png.toHex(0) + '}') +
               paragraph("\\qc\\sa200\\i\\fs19\\cf2", spans(block.text));
    }

    const std::vector<Block> &m_blocks;
    const ReadPicture &m_readPicture;
    std::size_t m_at = 0;     // the block that is written
    std::vector<int> m_edges; // of the table that is written
    int m_chapter = 0;
    int m_step = 0;
};

} // namespace

QByteArray rtfDocument(const std::vector<Block> &blocks, const ReadPicture &readPicture)
{
    return Writer(blocks, readPicture).document();
}
