#pragma once

#include <QString>

/// Opens folders and documents in the system's own programs.
class Shell
{
public:
    enum class Window { Normal, Minimised };

    virtual ~Shell() = default;
    /// Opens a folder or a document with the program the system keeps for it. `path` is absolute.
    /// Throws RuntimeError 53 when that program could not be started.
    virtual void open(const QString &path, Window window) = 0;
};
