#pragma once

#include <QByteArrayView>
#include <QString>
#include <memory>

/// A file that is written under a temporary name beside its target and takes the target's place in
/// one step, made lasting before commit() returns. All throw RuntimeError 61 (disk full), 75 (any
/// other failure of the file, a missing permission among them) or 76 (no such folder); the target
/// is then as it was.
class Replacement
{
public:
    explicit Replacement(const QString &path);
    /// Without a commit nothing is left of it.
    ~Replacement();
    Q_DISABLE_COPY_MOVE(Replacement)

    void write(QByteArrayView bytes);
    void commit();

private:
    class Draft;

    std::unique_ptr<Draft> m_draft;
};
