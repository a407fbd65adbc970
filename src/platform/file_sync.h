#pragma once

#include <QString>

class QFileDevice;

/// The syncs that QSaveFile leaves out.

/// Syncs the content of an open file. Throws RuntimeError 61 (disk full) or 75.
void syncContent(const QFileDevice &file);

/// Syncs the new name of a file, best effort.
void syncName(const QString &path);

/// Whether that is the system's text for a full disk or a used-up quota.
bool isDiskFullText(const QString &errorText);
