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
/// printer that the operator chooses. No printer, or a failure, is reported. A cancelled
/// dialog prints nothing. The default printer is afterwards what it was, and the charts' backdrops
/// are transparent.
void printDiagrams(const DiagramPrinting &with);
