#pragma once

#include <QString>

class QFileDevice;

/// What the toolkit leaves out when it replaces a file.

/// Brings the content of an open file to the disk. Throws RuntimeError 61 (disk full) or 75.
void syncContent(const QFileDevice &file);

/// Makes a new name of a file last, as far as its file system can.
void syncName(const QString &path);

/// Whether that is the system's text for a full disk or a used-up quota.
bool isDiskFullText(const QString &errorText);
