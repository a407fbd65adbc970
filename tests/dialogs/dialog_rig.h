#pragma once

#include "tests/diagrams/diagrams_rig.h"

/// A station with the shipped settings and its two live diagrams, as the dialogs find it.
class DialogRig : public DiagramsRig
{
protected:
    DialogRig() { load(live); }

    /// The settings file after these lines were written: they stand first, their old lines are
    /// gone.
    QByteArray configWith(const QByteArrayList &lines) const
    {
        QByteArrayList rest = folder.config().split('\n');
        for (const QByteArray &line : lines)
            rest.removeIf([key = line.first(line.indexOf(',') + 1)](const QByteArray &old) {
                return old.startsWith(key);
            });
        return lines.join("\r\n") + "\r\n" + rest.join('\n');
    }
};
