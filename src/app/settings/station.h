#pragma once

#include "app/settings/channels.h"
#include "app/settings/diagram.h"
#include "app/settings/sensor.h"
#include "platform/clock.h"
#include "platform/runtime_error.h"

#include <QLocale>
#include <QString>
#include <QStringList>
#include <array>
#include <vector>

/// The state that all rooms share: one object, owned by the program and passed by reference. It
/// notifies nobody: code that changes what a window shows emits a signal of its own.
struct Station {
    QString appFolder; ///< the folder that holds the program, without a slash at its end
    QLocale locale;    ///< of numbers and dates on the screen

    std::vector<Diagrama> Diagrame; ///< the live diagrams, sorted by name
    std::vector<Sensor> sensors;    ///< in the order of the diagrams' series
    /// The history diagrams, Diagrama1 first.
    std::array<Diagrama, channels::kDiagrams> Istoric;
    std::array<QString, 4> NumeFisier; ///< storage file names; only the first is ever written

    bool monitorActive = false;
    QDateTime nextSampling = zeroDateTime();
    bool TimeoutComunicare = false; ///< the recorder did not answer in time

    bool diagramsOpen = false;   ///< Form1 is loaded
    bool FormMdbDeschis = false; ///< the database browser is loaded
    bool historyOpen = false;    ///< the history generator is loaded
    /// Widths of the two history charts since the last day was drawn, twips; 0: none was.
    std::array<double, channels::kDiagrams> historyWidths{};
    qint16 currentRow = 1; ///< chart row that the next sample writes

    /// Throws RuntimeError 9 when there is no such diagram.
    Diagrama &diagramAt(std::size_t index)
    {
        if (index >= Diagrame.size())
            throw RuntimeError(RuntimeError::SubscriptOutOfRange);
        return Diagrame[index];
    }

    QString configPath() const { return appFolder + QStringLiteral("/config/config.ini"); }
    QString storagePath(const QString &name) const
    {
        return appFolder + QStringLiteral("/mdb/") + name;
    }
    QString archiveFolder() const { return appFolder + QStringLiteral("/mdb/arhive/"); }
    QString imageFolder() const { return appFolder + QStringLiteral("/img/"); }
    QString helpPath() const { return appFolder + QStringLiteral("/Doc/help.doc"); }
    QString warningIconPath() const { return appFolder + QStringLiteral("/res/Warning.ico"); }
};
