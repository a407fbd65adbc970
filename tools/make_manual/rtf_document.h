#pragma once

#include "tools/make_manual/manual_text.h"

#include <QByteArray>
#include <functional>

/// Bytes of a picture file (PNG) by the name the manual gives it. Throws std::runtime_error.
using ReadPicture = std::function<QByteArray(const QString &name)>;

/// The manual as a document that word processors open: Rich Text Format, A4, with a list of
/// chapters, styled headings, tables and embedded pictures. Everything is ASCII. Throws
/// std::runtime_error for a picture that is none, and what `readPicture` throws.
QByteArray rtfDocument(const std::vector<Block> &blocks, const ReadPicture &readPicture);
