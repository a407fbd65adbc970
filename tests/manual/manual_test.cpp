#include "tools/make_manual/rtf_document.h"

#include <QBuffer>
#include <QImage>
#include <gtest/gtest.h>
#include <stdexcept>

namespace
{

QByteArray png()
{
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray rtf(const QString &source)
{
    return rtfDocument(parseManual(source), [](const QString &name) {
        if (name != "da.png")
            throw std::runtime_error("no such file");
        return png();
    });
}

} // namespace

TEST(Manual, EveryBlockFindsItsForm)
{
    const QByteArray document =
        rtf(QStringLiteral("# Titlu\n"
                           "## Unu\nmai multe\nrânduri **tari** și `C:\\{x}`\n"
                           "1. întâi\n  urmarea\n2. apoi\n\n"
                           "- punct\n\n"
                           "1. iar întâi\n\n"
                           "| a | b |\n|---|---|\n| c | d |\n\n"
                           "![Poza](da.png)\n"
                           "## Doi\n"));
    EXPECT_TRUE(document.startsWith("{\\rtf1"));
    for (const char *part :
         {"HYPERLINK \\\\l \"cap2\"}{\\fldrslt 2. Doi}", "{\\*\\bkmkstart cap2}2. Doi",
          "mai multe r\\u226?nduri {\\b tari} \\u537?i {\\b\\cf2 C:\\\\\\{x\\}}",
          "1.\\tab \\u238?nt\\u226?i urmarea", "2.\\tab apoi", "1.\\tab iar", "\\bullet\\tab punct",
          "\\trhdr", "c\\cell", "\\picwgoal600\\pichgoal300", "89504e47", "Poza\\par"})
        EXPECT_TRUE(document.contains(part)) << part;
    EXPECT_EQ(document.count("\\row}"), 2);
    EXPECT_FALSE(document.contains("---"));

    int depth = 0;
    for (qsizetype i = 0; i < document.size(); ++i) {
        EXPECT_LT(static_cast<unsigned char>(document[i]), 0x80);
        if (document[i] == '\\')
            ++i;
        else if (document[i] == '{')
            ++depth;
        else if (document[i] == '}')
            --depth;
        ASSERT_TRUE(depth > 0 || i >= document.size() - 2);
    }
    EXPECT_EQ(depth, 0);
    EXPECT_THROW(rtf(QStringLiteral("![Lipsa](nu.png)")), std::runtime_error);
}
