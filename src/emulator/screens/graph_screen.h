// The graph screen: the mapping from the view window to dots, points, lines, circles and small text. Coordinates that
// fall on no dot, or aren't finite, draw nothing. Run thread.
#pragma once

#include <string_view>

#include "emulator/machine/graph_memory.h"

namespace numalink {

Surface &graphScreen();              // whoever writes to it directly calls graphScreenTouch
std::uint64_t graphScreenChanges();  // grows with every dot that took another colour
void graphScreenTouch();

double mapX(double x);  // view window units to dots, from 1
double mapY(double y);

// The dot takes color only if that is lower, as a number, than the colour it has.
void putPixel(int x, int y, PixelColor color);
PixelColor pixelAt(int x, int y);  // background outside

// The dots of a line one after the other in a style; the pattern of a broken one goes on from dot to dot.
class StyledDots {
public:
    StyledDots(PixelColor ofDots, LineStyle ofLine, int last = displayWidth - 1)
        : color(ofDots), style(ofLine), lastColumn(last) {}
    void put(int x, int y, void (*putDot)(int x, int y, PixelColor color) = putPixel);

private:
    PixelColor color;
    LineStyle style;
    int lastColumn;
    int count = 0, lastX = -1, lastY = -1;
};

void plotPoint(double x, double y, PixelColor color);  // sets X, Y and the Line history; background overwrites
void pixelOn(double x, double y, PixelColor color);
void pixelOff(double x, double y);
void pixelChange(double x, double y, PixelColor color);
bool pixelTest(double x, double y);

// In the style of sketches. Paced at each step; a stop ends it.
void drawLine(double x1, double y1, double x2, double y2, PixelColor color);
void drawLastLine(PixelColor color);
void drawCircle(double x, double y, double radius, PixelColor color);
void drawVertical(double x, PixelColor color);
void drawHorizontal(double y, PixelColor color);

void graphText(double first, double second, std::string_view text, PixelColor color);  // small font; first is down

// The picture memories 1 to 6; other numbers do nothing.
void storePicture(int number);   // a copy of the graph screen
void recallPicture(int number);  // by putPixel over the graph screen, then mode 1

void clearGraph();   // background, mode 1, the background picture recalled
void clearScreen();  // the same with the screen in view left as it is

}  // namespace numalink
