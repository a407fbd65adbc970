#pragma once

#include "diagrams/image_export.h"

class Operator;
class Printers;

/// What printing the diagrams needs; all of it outlives the call.
struct DiagramPrinting {
    Station &station;
    const DiagramCapture &capture;
    Printers &printers;
    Operator &op;
    const Clock &clock;
};

/// Prints all diagrams on one page, each with a line of its name, date and time below, on the
/// printer that the operator chooses. Reports a failure, or that there is no printer. A cancelled
/// dialog prints nothing. Restores the default printer and leaves the backdrops transparent.
void printDiagrams(const DiagramPrinting &with);
