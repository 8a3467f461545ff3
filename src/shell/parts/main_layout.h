// Where the parts of the main window's client area stand. Pure.
#pragma once

namespace numalink {

struct Rectangle {
    int x, y, width, height;
    bool operator==(const Rectangle &) const = default;
};

struct MainLayout {
    Rectangle tree;
    Rectangle toggle;
    Rectangle lineNumbers;
    Rectangle program;
    Rectangle container;
};

inline constexpr int treeColumnWidth = 200;
inline constexpr int toggleGap = 12;  // between tree and view: the toggle button and its margin
inline constexpr int toggleWidth = 10;
inline constexpr int lineNumberWidth = 40;

// Rectangles in pixels for a client area of this size (what lies between toolbar and status bar), the widths above
// times scale.
MainLayout layoutFor(int width, int height, bool treeVisible, double scale);

}  // namespace numalink
