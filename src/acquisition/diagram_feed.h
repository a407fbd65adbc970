#pragma once

#include "app/settings/sensor.h"

#include <vector>

/// The live diagrams, as the monitoring cycle sees them.
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
