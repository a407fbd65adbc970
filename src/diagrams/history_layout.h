#pragma once

#include "diagrams/layout.h"

#include <QtGlobal>

/// The layout of the history window, and how its charts grow and scroll. All lengths are twips;
/// nothing here knows a window.

/// From this many rows on a history chart no longer keeps the window's width.
constexpr int kRowsOfWindowWidth = 300;

/// Width of a history chart of so many rows: 15300 twips for every 300, 66000 at most.
double historyChartWidth(int rowCount);

/// A scroll bar of 16-bit values under a chart that is wider than its viewport.
struct ScrollRange {
    qint16 minimum = -32767;
    qint16 maximum = -32767; ///< same as the minimum: nothing to scroll
    quint8 factor = 1;       ///< twips per step of the value
};

/// The range for a chart's inner frame. `factor` is the present one; it changes only when the
/// overflow is beyond what 16 bits hold. Throws RuntimeError 6 when a value does not fit its type.
ScrollRange scrollRange(double innerLeft, double innerWidth, double viewportWidth, quint8 factor);

/// Left edge of the inner frame for a scroll bar's value; -32767 is the start of the day.
double innerFrameLeft(int value, quint8 factor);

/// Sizes that the window system and the texts decide.
struct HistoryMeasures {
    TwipsSize inner; ///< FormAdoChart without its frame
    TwipsSize prompt;
    TwipsSize date;
    TwipsSize button;
    double statusWidth = 0; ///< of the longest text that the status line usually shows
    double textHeight = 0;  ///< one line of text
    double scrollBarHeight = 0;
};

/// One chart's place: its title centred above the viewport, the scroll bar below it.
struct HistoryPanel {
    TwipsRect title;
    TwipsRect viewport;
    TwipsRect scrollBar;
};

/// Prompt, date, button and status stand in a row, or in more rows when the window is too narrow.
struct HistoryLayout {
    TwipsRect prompt;
    TwipsRect date;
    TwipsRect button;
    TwipsRect status; ///< as far as the window's right margin
    HistoryPanel chart1;
    HistoryPanel chart2;
    TwipsRect selection; ///< two lines below the charts
};

HistoryLayout historyLayout(const HistoryMeasures &measures);
