#pragma once

#include "platform/runtime_error.h"

#include <QByteArray>

class QFileDevice;

/// Atomic, durable replacement of files: written under a temporary name, synced, renamed, and the
/// rename synced, before the call returns.
///
/// All throw RuntimeError 53 (no such file), 61 (disk full), 75 (any other failure of the file, a
/// missing permission among them) or 76 (no such folder); the target is then as it was.

void replaceFile(const QString &path, const QByteArray &content);

/// An existing target is replaced.
void copyFile(const QString &source, const QString &target);

/// The runtime's error for a file that has just failed.
RuntimeError fileError(const QFileDevice &file);
