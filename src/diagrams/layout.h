#pragma once

/// Where the parts of the live diagrams window go. All lengths are twips.

struct TwipsSize {
    double width = 0;
    double height = 0;
    bool operator==(const TwipsSize &) const = default;
};

struct TwipsRect {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    bool operator==(const TwipsRect &) const = default;
};

/// Sizes that the window system decides and the layout depends on.
struct DiagramsMeasures {
    TwipsSize outer; ///< Form1 with its frame
    TwipsSize inner; ///< Form1 without its frame
    TwipsSize label1;
    TwipsSize label2;
    TwipsSize button;
    double pickedPoint1Height = 0; ///< of the text below a chart, 0 while there is none
    double pickedPoint2Height = 0;
};

struct DiagramsLayout {
    TwipsRect chart1;
    TwipsRect label1;
    TwipsRect chart2;
    TwipsRect label2;
    TwipsRect button;
    double dateLabel1Top; ///< both date labels stand at the left edge
    double dateLabel2Top;
};

/// The outer size that Form1 takes for an inner size of the main window; never below zero.
TwipsSize form1Size(TwipsSize mainInner);

/// Places the parts. The upper chart starts below an eighth of the main window's height, the lower
/// one at half of it; each is a third of Form1 high. Where large frames or letters leave too little
/// room, titles and texts move inside the form and the charts shrink.
DiagramsLayout diagramsLayout(TwipsSize mainInner, const DiagramsMeasures &measures);

/// The room above the upper chart, for its title.
double titleRoom(TwipsSize mainInner);
