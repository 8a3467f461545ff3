// The shortest way from one sequence to the other, found from both ends at once and split where they meet (Myers'
// algorithm in linear space). A stretch whose way is longer than the limit is split where the search has come furthest.
#include "compare/sequence_diff.h"

#include <algorithm>
#include <unordered_map>

namespace numalink {

namespace {

using Elements = std::span<const std::uint32_t>;

constexpr std::ptrdiff_t stepLimit = 256;  // changes that are looked for from each end
constexpr std::ptrdiff_t unreached = -1;

struct Place {
    std::size_t left, right;
};

// How far the search from one end has come on each diagonal (left place less right place).
struct Front {
    std::vector<std::ptrdiff_t> reached = std::vector<std::ptrdiff_t>(2 * stepLimit + 3, unreached);

    std::ptrdiff_t &at(std::ptrdiff_t diagonal) { return reached[static_cast<std::size_t>(diagonal + stepLimit + 1)]; }
};

struct Search {
    Elements left, right;
    Front &forward, &backward;

    std::ptrdiff_t leftSize() const { return std::ssize(left); }
    std::ptrdiff_t rightSize() const { return std::ssize(right); }

    bool alike(std::ptrdiff_t x, std::ptrdiff_t y, bool fromEnd) const {
        const std::ptrdiff_t i = fromEnd ? leftSize() - 1 - x : x, j = fromEnd ? rightSize() - 1 - y : y;
        return left[static_cast<std::size_t>(i)] == right[static_cast<std::size_t>(j)];
    }

    // One change further on this diagonal, and along what is alike behind it.
    void advance(Front &front, std::ptrdiff_t diagonal, std::ptrdiff_t steps, bool fromEnd) const {
        if (steps == 0) {
            front.at(0) = 0;
        } else {
            const std::ptrdiff_t fromLeft = front.at(diagonal - 1), fromRight = front.at(diagonal + 1);
            std::ptrdiff_t x = fromLeft != unreached && fromLeft < leftSize() ? fromLeft + 1 : unreached;
            if (fromRight != unreached && fromRight - diagonal <= rightSize()) x = std::max(x, fromRight);
            front.at(diagonal) = x;
        }
        std::ptrdiff_t &x = front.at(diagonal);
        if (x == unreached) return;
        while (x < leftSize() && x - diagonal < rightSize() && alike(x, x - diagonal, fromEnd)) x++;
    }

    bool meets(std::ptrdiff_t diagonal) {
        const std::ptrdiff_t other = leftSize() - rightSize() - diagonal;
        if (other < -stepLimit || other > stepLimit) return false;
        const std::ptrdiff_t x = forward.at(diagonal), fromEnd = backward.at(other);
        return x != unreached && fromEnd != unreached && x + fromEnd >= leftSize();
    }

    Place furthest() {
        std::ptrdiff_t best = 0, bestDiagonal = 0;
        for (std::ptrdiff_t diagonal = -stepLimit; diagonal <= stepLimit; diagonal++) {
            const std::ptrdiff_t x = forward.at(diagonal);
            if (x == unreached || 2 * x - diagonal <= 2 * best - bestDiagonal) continue;
            best = x;
            bestDiagonal = diagonal;
        }
        return {static_cast<std::size_t>(best), static_cast<std::size_t>(best - bestDiagonal)};
    }

    // A place on the way, at neither of its ends. Both sides hold something, and differ in their first and last.
    Place split() {
        std::ranges::fill(forward.reached, unreached);
        std::ranges::fill(backward.reached, unreached);
        const std::ptrdiff_t delta = leftSize() - rightSize();
        const bool odd = delta % 2 != 0;
        for (std::ptrdiff_t steps = 0; steps <= stepLimit; steps++) {
            for (std::ptrdiff_t diagonal = -steps; diagonal <= steps; diagonal += 2) {
                advance(forward, diagonal, steps, false);
                if (!odd || !meets(diagonal)) continue;
                const std::ptrdiff_t x = forward.at(diagonal);
                return {static_cast<std::size_t>(x), static_cast<std::size_t>(x - diagonal)};
            }
            for (std::ptrdiff_t diagonal = -steps; diagonal <= steps; diagonal += 2) {
                advance(backward, diagonal, steps, true);
                const std::ptrdiff_t ahead = delta - diagonal;
                if (odd || ahead < -stepLimit || ahead > stepLimit || !meets(ahead)) continue;
                const std::ptrdiff_t x = backward.at(diagonal);
                return {static_cast<std::size_t>(leftSize() - x),
                        static_cast<std::size_t>(rightSize() - (x - diagonal))};
            }
        }
        return furthest();
    }
};

struct Finder {
    Front forward, backward;
    std::vector<Place> pairs;  // of alike elements, by rising places

    void find(Elements left, Elements right, Place at) {
        while (!left.empty() && !right.empty()) {
            if (left.front() == right.front()) {
                pairs.push_back(at);
                left = left.subspan(1);
                right = right.subspan(1);
                at = {at.left + 1, at.right + 1};
                continue;
            }
            std::size_t tail = 0;
            const std::size_t shorter = std::min(left.size(), right.size());
            while (tail < shorter && left[left.size() - 1 - tail] == right[right.size() - 1 - tail]) tail++;
            const Place behind{at.left + left.size() - tail, at.right + right.size() - tail};
            left = left.first(left.size() - tail);
            right = right.first(right.size() - tail);
            if (!left.empty() && !right.empty()) {
                const Place middle = Search{left, right, forward, backward}.split();
                find(left.first(middle.left), right.first(middle.right), at);
                find(left.subspan(middle.left), right.subspan(middle.right),
                     {at.left + middle.left, at.right + middle.right});
            }
            for (std::size_t i = 0; i < tail; i++) pairs.push_back({behind.left + i, behind.right + i});
            return;
        }
    }
};

// The places of what the other side has at all: the rest can't be common, and would only make the way long.
std::vector<std::size_t> placesToCompare(Elements own, Elements other) {
    std::unordered_map<std::uint32_t, bool> known;
    for (const std::uint32_t element : other) known[element] = true;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < own.size(); i++)
        if (known.contains(own[i])) places.push_back(i);
    return places;
}

std::vector<std::uint32_t> elementsAt(Elements elements, const std::vector<std::size_t> &places) {
    std::vector<std::uint32_t> picked;
    picked.reserve(places.size());
    for (const std::size_t place : places) picked.push_back(elements[place]);
    return picked;
}

}  // namespace

std::vector<CommonStretch> commonStretches(Elements left, Elements right) {
    const std::vector<std::size_t> leftPlaces = placesToCompare(left, right);
    const std::vector<std::size_t> rightPlaces = placesToCompare(right, left);
    Finder finder;
    finder.find(elementsAt(left, leftPlaces), elementsAt(right, rightPlaces), {0, 0});
    std::vector<CommonStretch> stretches;
    for (const Place &pair : finder.pairs) {
        const std::size_t x = leftPlaces[pair.left], y = rightPlaces[pair.right];
        CommonStretch *last = stretches.empty() ? nullptr : &stretches.back();
        if (last != nullptr && last->left + last->count == x && last->right + last->count == y) {
            last->count++;
        } else {
            stretches.push_back({x, y, 1});
        }
    }
    return stretches;
}

}  // namespace numalink
