// The outline of a dot drawing: the edges between dots and no dots, joined to closed contours. Neighbouring dots have
// no edge between them, so that no seam shows at any scale. Used by make_screen_face.
#pragma once

#include <array>
#include <vector>

#include "dot_drawings.h"

namespace tool {

struct Place {
    int x, y;  // in dots; x to the right, y upward from the drawing's lowest edge

    bool operator==(const Place &) const = default;
};

using Contour = std::vector<Place>;  // its corners; the filled side is to the right of the way

struct OutlineTracer {
    static constexpr int limit = 8;  // places run from 0 to 7 both ways
    enum Direction { up, right, down, left };
    static constexpr std::array<Place, 4> step{{{0, 1}, {1, 0}, {0, -1}, {-1, 0}}};

    const Glyph &glyph;
    // Whether an edge leaves a place in a direction and isn't part of a contour yet.
    std::array<std::array<std::array<bool, 4>, limit>, limit> edges{};

    bool &edge(Place from, int direction) {
        return edges[static_cast<std::size_t>(from.x)][static_cast<std::size_t>(from.y)]
                    [static_cast<std::size_t>(direction)];
    }

    bool dot(int column, int row) const {
        return column >= 0 && row >= 0 && column < static_cast<int>(glyph.width()) &&
               glyph.dot(static_cast<std::size_t>(column), static_cast<std::size_t>(row));
    }

    void markEdges() {
        const int rows = static_cast<int>(glyph.rows.size());
        for (int row = 0; row < rows; row++) {
            for (int column = 0; column < static_cast<int>(glyph.width()); column++) {
                if (!dot(column, row)) continue;
                const int bottom = rows - row - 1;
                if (!dot(column - 1, row)) edge({column, bottom}, up) = true;
                if (!dot(column, row - 1)) edge({column, bottom + 1}, right) = true;
                if (!dot(column + 1, row)) edge({column + 1, bottom + 1}, down) = true;
                if (!dot(column, row + 1)) edge({column + 1, bottom}, left) = true;
            }
        }
    }

    // Follows the edges from a place until they close. Where two go on, the right turn stays with the same dot.
    Contour follow(const Place start, int direction) {
        Contour contour;
        Place at = start;
        int previous = -1;
        const int first = direction;
        do {
            edge(at, direction) = false;
            if (direction != previous) contour.push_back(at);
            previous = direction;
            const Place &way = step[static_cast<std::size_t>(direction)];
            at = {at.x + way.x, at.y + way.y};
            for (const int turn : {1, 0, 3}) {
                direction = (previous + turn) % 4;
                if (edge(at, direction)) break;
            }
        } while (!(at == start));
        if (previous == first) contour.erase(contour.begin());
        return contour;
    }

    std::vector<Contour> trace() {
        markEdges();
        std::vector<Contour> contours;
        for (int x = 0; x < limit; x++) {
            for (int y = 0; y < limit; y++) {
                for (int direction = up; direction <= left; direction++) {
                    if (edge({x, y}, direction)) contours.push_back(follow({x, y}, direction));
                }
            }
        }
        return contours;
    }
};

inline std::vector<Contour> outlines(const Glyph &glyph) { return OutlineTracer{.glyph = glyph}.trace(); }

}  // namespace tool
