#pragma once

#include <QImage>
#include <functional>

class Clock;
class Operator;
class Shell;
struct Diagrama;
struct Station;

/// Takes a picture of a diagram as it is on the screen. May throw RuntimeError.
using DiagramCapture = std::function<QImage(const Diagrama &)>;

/// What saving the diagrams' pictures needs; all of it outlives the call.
struct ImageExport {
    const Station &station;
    const DiagramCapture &capture;
    const Clock &clock;
    Shell &shell;
    Operator &op;
};

/// Saves one Windows bitmap per diagram of the diagram table, img/ + name + "_" + date and time to
/// the minute + ".bmp", then opens their folder minimised.
/// Each file appears complete or not at all; one of the same minute is replaced. A picture that
/// cannot be saved is reported, and the folder is not opened. If the folder cannot be opened, the
/// message says that the pictures are in it.
void saveDiagramImages(const ImageExport &with);
