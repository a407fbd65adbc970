#pragma once

#include <QImage>
#include <functional>

class Clock;
class Shell;
struct Diagrama;
struct Station;

/// Takes a picture of a diagram as it is on the screen. May throw RuntimeError.
using DiagramCapture = std::function<QImage(const Diagrama &)>;

/// File of a diagram's picture: img/ + name + "_" + date and time to the minute + ".bmp".
QString imagePath(const Station &station, const Diagrama &record, const Clock &clock);

/// Saves one Windows bitmap per diagram of the diagram table, then opens their folder minimised.
/// Each file appears complete or not at all; one of the same minute is replaced. Throws
/// RuntimeError 53, 61, 75 or 76, and what the capture throws; the folder is then not opened.
void saveDiagramImages(const Station &station, const DiagramCapture &capture, const Clock &clock,
                       Shell &shell);
