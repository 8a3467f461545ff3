// A matrix or list as a table in the tiny digits. Pure over the surface; any thread. Places in dots.
#pragma once

#include <span>
#include <string>

#include "platform/surface.h"

namespace numalink {

inline constexpr int matrixPictureLimit = 500;  // rows and columns that are drawn

struct MatrixPicture {
    int columns = 0;
    int rows = 0;
    std::span<const double> values;  // row by row; what it doesn't reach isn't drawn
    int pickedRow = 1;               // from 1
    int pickedColumn = 1;
    int left = 0;  // the dot of the table that lies in the surface's top left corner
    int top = 0;
};

// What of the table lies on the surface; nothing else is worked out. The picked cell stands in inverse.
void drawMatrix(Surface &surface, const MatrixPicture &picture);

// Dots of the whole table.
int matrixPictureWidth(int columns);
int matrixPictureHeight(int rows);
// The picked cell's value at full length below a table of that size, right-aligned.
void drawPickedValue(Surface &surface, const MatrixPicture &picture, int tableWidth, int tableHeight);

std::string matrixCellText(double value);    // at most six characters
std::string matrixPickedText(double value);  // 15 digits, in calculator codes

}  // namespace numalink
