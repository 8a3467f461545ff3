// Any bytes as head and data of every drawn kind: drawing ends, its bitmap is of the size that it tells, and a part of
// a table is what lies there in the whole.
#include <cstdlib>

#include "drawing/bitmap_file.h"
#include "drawing/dot_fonts.h"
#include "drawing/dot_text.h"
#include "drawing/item_picture.h"

namespace {

using namespace numalink;

void comparePart(const MatrixValues &matrix, int left, int top) {
    const PickedCell picked{matrix.rows, matrix.columns};
    const Surface whole = matrixPart(matrix, picked, 0, 0, matrixSize(matrix));
    const Surface part = matrixPart(matrix, picked, left, top, {40, 20});
    for (int y = 0; y < 20; y++)
        for (int x = 0; x < 40; x++)
            if (dotAt(part, x, y) != dotAt(whole, left + x, top + y)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool loaded = loadLargeFont() && loadSmallFont();
    if (!loaded || size < 2) return 0;
    constexpr ItemKind kinds[] = {kind::matrix,           kind::list,    kind::colorScreen,
                                  kind::monochromeScreen, kind::picture, kind::backup};
    const ItemKind itemKind = kinds[data[0] % std::size(kinds)];
    const std::size_t headSize = std::min<std::size_t>(data[1] % 64, size - 2);
    const ByteView head(data + 2, headSize);
    const ByteView rest(data + 2 + headSize, size - 2 - headSize);
    pictureFault(itemKind, head, rest);
    // Tables grow with their heads alone: what is drawn of them is the same for all, so large ones are passed over.
    const MatrixValues matrix = matrixValuesOf(head, rest);
    const bool isTable = itemKind == kind::matrix || itemKind == kind::list;
    if (isTable && matrix.rows * matrix.columns > 2000) return 0;
    if (isTable) comparePart(matrix, data[0] * 3, data[1]);
    const Surface surface = itemSurface(itemKind, head, rest);
    if (surface.width < 0 || surface.height < 0 || surface.width > 16000) std::abort();
    if (surface.dots.size() < 200000) {
        if (bitmapBytes(surface).size() < bitmapHeadSize) std::abort();
        dotText(surface);
    }
    return 0;
}
