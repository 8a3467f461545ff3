// What graphs are drawn with: a part of the graph screen with its window, its axes, and a pen that joins points. The
// whole screen's columns are 1 to 127, as points map. Everything goes by putPixel. Run thread.
#pragma once

#include "emulator/screens/graph_screen.h"

namespace numalink {

struct GraphFrame {
    int left = 0;   // the column ahead of the first, dots
    int width = 0;  // columns
    double xLow = 0, xHigh = 0, xScale = 0, yLow = 0, yHigh = 0, yScale = 0;
    double tLow = 0, tHigh = 0, tPitch = 0;  // of T and theta
};
// Of the view window, which takes the calculators' first values where it has no size.
GraphFrame wholeFrame();
// The halves of a dual screen: the view window, and the right screen's, which may have no size and takes the range of T
// from the left where it has none. A line parts them.
GraphFrame leftFrame();
GraphFrame rightFrame();
void drawParting();

bool hasSize(const GraphFrame &frame);
double columnX(const GraphFrame &frame, int column);  // column from 1 to width
double rowY(const GraphFrame &frame, int row);        // row from 0 to 63
double rowOf(const GraphFrame &frame, double y);

// Axes unless they are off, the grid and the names of the axes where they are on.
void drawAxes(const GraphFrame &frame);

// Joins points one after the other, or leaves them alone. What isn't finite lifts it.
class CurvePen {
public:
    CurvePen(const GraphFrame &of, PixelColor color, LineStyle style, bool joinsPoints)
        : frame(of), dots(color, style, of.left + of.width), joins(joinsPoints) {}
    void lift() { isDown = false; }
    void to(double x, double y);            // view window units
    void toColumn(int column, double y);    // column from 1 to width
    void toDot(double column, double row);  // dots of the screen

private:
    GraphFrame frame;
    StyledDots dots;
    bool joins;
    bool isDown = false;
    double penColumn = 0, penRow = 0;
};

// Every second column is filled from one row up to the other, ends included.
void shadeColumn(const GraphFrame &frame, int column, double fromRow, double toRow, PixelColor color);

// A text on the bottom row in the large font, over what stands there. Calculator codes.
void graphCaption(std::string_view text, PixelColor color);

}  // namespace numalink
