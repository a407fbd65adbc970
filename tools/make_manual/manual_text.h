#pragma once

#include <QString>
#include <QStringList>
#include <vector>

/// The text source of the operator's manual: a small part of Markdown.
///
///   # title of the document        - item of a list         | table | row |
///   ## chapter                     1. numbered step         ![caption](picture.png)
///   ### section                    paragraph, with **bold** and `what the screen says`
///
/// A paragraph ends at an empty line; a line that begins with two blanks goes on with the item
/// above it. The first row of a table is its heading; a row of dashes below it is left out.
struct Block {
    enum class Kind { Title, Chapter, Section, Paragraph, Bullet, Step, Row, Picture };

    Kind kind = Kind::Paragraph;
    QString text;       ///< Picture: its caption
    QStringList cells;  ///< Row only
    QString file;       ///< Picture only
    bool first = false; ///< of the steps or rows that follow one another
};

std::vector<Block> parseManual(const QString &source);

/// A stretch of a text in one style.
struct Span {
    enum class Style { Plain, Bold, Screen };

    Style style = Style::Plain;
    QString text;
};

std::vector<Span> parseSpans(const QString &text);
