// Any item that is drawn as dots, as one surface of its content's size. Graphical thread.
#pragma once

#include <vector>

#include "calculator/item_kinds.h"
#include "drawing/plane_picture.h"
#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

// The values of a matrix or list, by row, then column. Cells that the data lacks are 0.
struct MatrixValues {
    int rows = 0;  // at most 500
    int columns = 0;
    std::vector<double> values;
};

// What a head claims that isn't so. The rest is drawn all the same.
enum class PictureFault { none, tooLarge, unknownColor, endsEarly };

struct PickedCell {
    int row = 1;
    int column = 1;
};

MatrixValues matrixValuesOf(ByteView head, ByteView data);
PictureFault pictureFault(ItemKind itemKind, ByteView head, ByteView data);

// The table with the picked cell and its value at full length: its size in dots, and a part of it. All of a table of
// 500 rows and columns would take 226 MB.
PictureSize matrixSize(const MatrixValues &matrix);
Surface matrixPart(const MatrixValues &matrix, PickedCell picked, int left, int top, PictureSize size);

// An item's surface; an empty one for kinds that aren't drawn. Picture sides beyond 1024 dots are cut.
Surface itemSurface(ItemKind itemKind, ByteView head, ByteView data);

// The first 128 by 64 dots of a picture or screen copy.
Surface screenSurface(ItemKind itemKind, ByteView head, ByteView data);

}  // namespace numalink
