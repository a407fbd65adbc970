#pragma once

#include "app/settings/sensor.h"

#include <QString>
#include <vector>

/// Where samples go. The monitoring cycle declares what it needs; the rooms that draw and store
/// give it.

/// The live diagrams, as the cycle sees them.
class DiagramFeed
{
public:
    virtual ~DiagramFeed() = default;
    /// Draws one row of readings in every diagram. Called only while Station::diagramsOpen is set.
    virtual void adauga_citiri(const std::vector<Sensor> &sensors) = 0;
    /// Opens the diagrams' window if it is not open, and puts it in the main window's upper left
    /// corner.
    virtual void showAtOrigin() = 0;
    /// Clears every diagram; the next row is row 1.
    virtual void goleste_diagramele() = 0;
};

/// The measurement files, as the cycle sees them. Both calls may open message boxes, behind which
/// anything goes on.
class SampleStore
{
public:
    virtual ~SampleStore() = default;
    /// Appends one record with the sensors' present values to the named storage file. Tells the
    /// operator of a failure itself; a missing file also clears Station::monitorActive.
    virtual void adauga_inregistrare(const QString &name) = 0;
    /// Turns the named storage file into the day's archive.
    virtual void arhiveaza_baza_date(const QString &name) = 0;
};
