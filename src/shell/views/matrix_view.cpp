#include "shell/views/matrix_view.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "calculator/charset.h"
#include "drawing/item_picture.h"
#include "drawing/matrix_picture.h"
#include "shell/parts/kind_looks.h"
#include "shell/parts/shell_texts.h"
#include "shell/views/surface_view.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct MatrixView {
    MatrixValues values;
    PickedCell picked;
    QString spoken;        // the item, for screen readers
    std::string sizeLine;  // of the status bar, without the picked cell
};
MatrixView state;

// Places of a cell in the table, in dots.
void scrollToPicked() {
    constexpr int columnWidth = 28, rowHeight = 8, headWidth = 18, headHeight = 9;
    const PickedCell &cell = state.picked;
    const int x = cell.column == 1 ? 0 : (cell.column - 1) * columnWidth + headWidth;
    const int y = cell.row == 1 ? 0 : (cell.row - 1) * rowHeight + headHeight;
    showSurfacePart(x, y, columnWidth + (cell.column == 1 ? headWidth : 0),
                    rowHeight + (cell.row == 1 ? headHeight : 0));
}

std::string pickedValue() {
    const std::size_t place =
        static_cast<std::size_t>(state.picked.row - 1) * static_cast<std::size_t>(state.values.columns) +
        static_cast<std::size_t>(state.picked.column - 1);
    if (place >= state.values.values.size()) return {};
    return utf8FromCalculator(matrixPickedText(state.values.values[place]));
}

void tellPicked() {
    const std::string value = pickedValue();
    const std::string row = std::to_string(state.picked.row), column = std::to_string(state.picked.column);
    describeSurface(state.spoken, value.empty() ? QString() : textOf(Text::pickedCell, {row, column, value}));
    std::string line = state.sizeLine;
    if (!value.empty()) line += "; " + row + ", " + column + ": " + value;
    userInterface.statusText(StatusPart::item, Text::size, line);
}

// The cell beside another one, or that one where the key doesn't move.
PickedCell cellBeside(PickedCell cell, int key) {
    cell.column += (key == Qt::Key_Right) - (key == Qt::Key_Left);
    cell.row += (key == Qt::Key_Down) - (key == Qt::Key_Up);
    cell.column = std::clamp(cell.column, 1, std::max(1, state.values.columns));
    cell.row = std::clamp(cell.row, 1, std::max(1, state.values.rows));
    return cell;
}

bool matrixKeys(const QKeyEvent &key) {
    if (key.key() < Qt::Key_Left || key.key() > Qt::Key_Down) return false;
    const PickedCell before = std::exchange(state.picked, cellBeside(state.picked, key.key()));
    if (state.picked.row != before.row || state.picked.column != before.column) {
        redrawSurface();
        tellPicked();
    }
    scrollToPicked();
    return true;
}

Surface partOfMatrix(int left, int top, int width, int height) {
    return matrixPart(state.values, state.picked, left, top, {width, height});
}

}  // namespace

void showMatrix(const StoredItem &item, const std::string &sizeLine) {
    state = {.values = matrixValuesOf(item.head, item.data),
             .picked = {},
             .spoken = spokenName(item.name, item.kind),
             .sizeLine = sizeLine};
    const PictureSize size = matrixSize(state.values);
    showSurfaceInParts(size.width, size.height, partOfMatrix, matrixKeys);
    tellPicked();
}

void forgetMatrixView() { state = {}; }

}  // namespace numalink
