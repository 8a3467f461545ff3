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
};

// The table, over the whole surface. The picked cell stands in inverse.
void drawMatrix(Surface &surface, const MatrixPicture &picture);

// The surface that an item's table needs.
int matrixPictureWidth(int columns);
int matrixPictureHeight(int rows);
// The picked cell's value at full length below the table, right-aligned in a surface of that size.
void drawPickedValue(Surface &surface, const MatrixPicture &picture, int surfaceWidth, int surfaceHeight);

std::string matrixCellText(double value);    // at most six characters
std::string matrixPickedText(double value);  // 15 digits, in calculator codes

}  // namespace numalink
