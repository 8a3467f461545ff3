// numalink-cli diff: what two programs, or the items of two files, differ in.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/item_sources.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "compare/program_compare.h"

namespace numalink {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t context = 3;            // lines around a difference
constexpr std::size_t externalArguments = 7;  // that a version control gives: path, and file, hash, mode of both
constexpr char redText[] = "\x1B[31m", greenText[] = "\x1B[32m", strongText[] = "\x1B[7m", plainMark[] = "\x1B[27m",
               plainText[] = "\x1B[0m";

struct DiffOptions {
    std::vector<std::string> sources;
    bool json = false;
    std::string color = "auto";

    bool isExternal() const { return sources.size() >= externalArguments; }
};

// An item of each side, or of one alone.
struct ItemPair {
    const SourceItem *left = nullptr, *right = nullptr;

    // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.UndefReturn): at least one is there
    const SourceItem &any() const { return left != nullptr ? *left : *right; }
    bool isProgram() const {
        return isTextKind(any().itemKind) && (!left || !right || left->itemKind == right->itemKind);
    }
    bool isSame() const {
        if (left == nullptr || right == nullptr || left->itemKind != right->itemKind) return false;
        const bool headsCount = !left->head.empty() && !right->head.empty();  // a text has none
        return left->data == right->data && (!headsCount || left->head == right->head);
    }
};

std::vector<ItemPair> pairItems(const ItemSource &left, const ItemSource &right) {
    std::vector<ItemPair> pairs;
    if (left.items.size() == 1 && right.items.size() == 1) return {{&left.items.front(), &right.items.front()}};
    std::vector<bool> taken(right.items.size());
    for (const SourceItem &item : left.items) {
        pairs.push_back({&item, nullptr});
        for (std::size_t i = 0; i < right.items.size(); i++) {
            const SourceItem &other = right.items[i];
            if (taken[i] || other.itemKind != item.itemKind || other.name != item.name) continue;
            taken[i] = true;
            pairs.back().right = &other;
            break;
        }
    }
    for (std::size_t i = 0; i < right.items.size(); i++)
        if (!taken[i]) pairs.push_back({nullptr, &right.items[i]});
    return pairs;
}

ProgramComparison compareItems(const ItemPair &pair) {
    const ByteView left = pair.left ? ByteView(pair.left->data) : ByteView();
    const ByteView right = pair.right ? ByteView(pair.right->data) : ByteView();
    ProgramComparison comparison = comparePrograms(left, right);
    // The one empty line of a program that isn't there is no line of it.
    if (left.empty()) comparison.left.clear();
    if (right.empty()) comparison.right.clear();
    return comparison;
}

Json marksOf(const std::vector<MarkedText> &marks) {
    Json list = Json::array();
    for (const MarkedText &mark : marks) list.push_back({mark.from, mark.size});
    return list;
}

Json rowAsJson(const ProgramComparison &comparison, const CompareRow &row) {
    static constexpr const char *names[] = {"same", "changed", "removed", "added"};
    Json record = {{"kind", names[static_cast<std::size_t>(row.kind)]}};
    if (row.left >= 0) {
        record["left"] = row.left + 1;
        record["leftText"] = utf8FromCalculator(comparison.left[static_cast<std::size_t>(row.left)].text);
    }
    if (row.right >= 0) {
        record["right"] = row.right + 1;
        record["rightText"] = utf8FromCalculator(comparison.right[static_cast<std::size_t>(row.right)].text);
    }
    if (row.kind == RowKind::changed) {
        record["leftMarks"] = marksOf(row.leftMarks);
        record["rightMarks"] = marksOf(row.rightMarks);
    }
    if (row.moved >= 0) record[row.left >= 0 ? "movedTo" : "movedFrom"] = row.moved + 1;
    return record;
}

bool isShown(const ProgramComparison &comparison, const CompareRow &row) {
    return (row.left >= 0 && !comparison.left.empty()) || (row.right >= 0 && !comparison.right.empty());
}

Json pairAsJson(const ItemPair &pair) {
    Json record = {{"name", utf8FromCalculator(pair.any().name)},
                   {"kind", pair.any().itemKind},
                   {"state", pair.left == nullptr    ? "added"
                             : pair.right == nullptr ? "removed"
                             : pair.isSame()         ? "same"
                                                     : "changed"}};
    if (!pair.isProgram() || pair.isSame()) return record;
    const ProgramComparison comparison = compareItems(pair);
    Json rows = Json::array();
    for (const CompareRow &row : comparison.rows)
        if (row.kind != RowKind::same && isShown(comparison, row)) rows.push_back(rowAsJson(comparison, row));
    record["rows"] = std::move(rows);
    return record;
}

// A line with its marked characters in reverse; without colours, a second line has a ^ below each.
void printLine(char sign, const ViewLine &line, const std::vector<MarkedText> &marks, std::ptrdiff_t moved,
               bool colored) {
    const char *color = !colored || sign == ' ' ? "" : sign == '-' || sign == '<' ? redText : greenText;
    std::string text;
    std::size_t at = 0;
    for (const MarkedText &mark : marks) {
        text += onOneLine(utf8FromCalculator(line.text.substr(at, mark.from - at)));
        if (colored) text += strongText;
        text += onOneLine(utf8FromCalculator(line.text.substr(mark.from, mark.size)));
        if (colored) text += plainMark;
        at = mark.from + mark.size;
    }
    text += onOneLine(utf8FromCalculator(line.text.substr(at)));
    std::printf("%s%c%s", color, sign, text.c_str());
    if (moved >= 0) std::printf("    (line %td of the other)", moved + 1);
    std::printf("%s\n", *color ? plainText : "");
    if (colored || marks.empty()) return;
    std::string below(marks.back().from + marks.back().size, ' ');
    for (const MarkedText &mark : marks)
        std::fill_n(below.begin() + static_cast<std::ptrdiff_t>(mark.from), mark.size, '^');
    std::printf("?%s\n", below.c_str());
}

void printRow(const ProgramComparison &comparison, const CompareRow &row, bool colored) {
    if (row.kind == RowKind::same) {
        printLine(' ', comparison.left[static_cast<std::size_t>(row.left)], {}, -1, colored);
        return;
    }
    const bool moved = row.moved >= 0;
    if (row.left >= 0 && !comparison.left.empty())
        printLine(moved ? '<' : '-', comparison.left[static_cast<std::size_t>(row.left)], row.leftMarks, row.moved,
                  colored);
    if (row.right >= 0 && !comparison.right.empty())
        printLine(moved ? '>' : '+', comparison.right[static_cast<std::size_t>(row.right)], row.rightMarks, row.moved,
                  colored);
}

// "12,3" for three lines from the twelfth on, as the usual listings of differences have it.
std::string rangeOf(const std::vector<CompareRow> &rows, std::size_t from, std::size_t end,
                    std::ptrdiff_t CompareRow::*side) {
    std::ptrdiff_t first = 0, count = 0, ahead = 0;
    for (std::size_t i = 0; i < end; i++) {
        const std::ptrdiff_t line = rows[i].*side;
        if (line < 0) continue;
        if (i < from) ahead = line + 1;
        if (i >= from && count++ == 0) first = line + 1;
    }
    return std::to_string(count > 0 ? first : ahead) + "," + std::to_string(count);
}

void printComparison(const ProgramComparison &comparison, bool colored) {
    const std::vector<CompareRow> &rows = comparison.rows;
    for (std::size_t i = 0; i < comparison.differences.size();) {
        const std::size_t first = comparison.differences[i].from;
        const std::size_t from = first - std::min(first, context);
        std::size_t end = 0;
        do {
            end = std::min(rows.size(), comparison.differences[i].from + comparison.differences[i].count + context);
            i++;
        } while (i < comparison.differences.size() && comparison.differences[i].from <= end + context);
        std::printf("@@ -%s +%s @@\n", rangeOf(rows, from, end, &CompareRow::left).c_str(),
                    rangeOf(rows, from, end, &CompareRow::right).c_str());
        for (std::size_t row = from; row < end; row++) printRow(comparison, rows[row], colored);
    }
}

void printPair(const ItemPair &pair, bool named, bool colored) {
    const std::string name = named ? printableName(pair.any().name) + ": " : "";
    if (pair.left == nullptr || pair.right == nullptr)
        std::printf("%sonly in the %s\n", name.c_str(), pair.right == nullptr ? "first" : "second");
    else if (!pair.isProgram())
        std::printf("%sdiffers\n", name.c_str());
    if (!pair.isProgram()) return;
    const ProgramComparison comparison = compareItems(pair);
    if (named && pair.left != nullptr && pair.right != nullptr) std::printf("%sdiffers\n", name.c_str());
    if (comparison.differences.empty())
        std::printf("%sthe text is the same, its bytes or its head are not\n", name.c_str());
    printComparison(comparison, colored);
}

bool useColor(const DiffOptions &options) {
    return options.color == "always" || (options.color == "auto" && isatty(STDOUT_FILENO) == 1);
}

int runDiff(const DiffOptions &options) {
    if (!loadTables()) return commandFailed("casio.ptt beside the program can't be read, so nothing is compared");
    const bool external = options.isExternal();
    auto left = readItemSource(options.sources[external ? 1 : 0]);
    auto right = left ? readItemSource(options.sources[external ? 4 : 1]) : std::nullopt;
    if (!left || !right) return exitFailed;
    if (!programOfText(*left, *right) || !programOfText(*right, *left)) return exitFailed;
    if (external) left->label = right->label = options.sources[0];
    std::vector<ItemPair> pairs = pairItems(*left, *right);
    const bool named = pairs.size() > 1;
    const bool same = std::ranges::all_of(pairs, &ItemPair::isSame);
    if (options.json) {
        Json record = {{"left", left->label}, {"right", right->label}, {"same", same}, {"items", Json::array()}};
        for (const ItemPair &pair : pairs) record["items"].push_back(pairAsJson(pair));
        std::printf("%s\n", record.dump(1, ' ', false, Json::error_handler_t::replace).c_str());
    } else if (!same) {
        std::printf("--- %s\n+++ %s\n", left->label.c_str(), right->label.c_str());
        for (const ItemPair &pair : pairs)
            if (!pair.isSame()) printPair(pair, named, useColor(options));
    }
    return same || external ? exitDone : exitShown;
}

}  // namespace

CommandRun declareDiff(CLI::App &command) {
    const auto options = std::make_shared<DiffOptions>();
    command
        .add_option("SOURCE", options->sources,
                    "Two of: LIBRARY-FOLDER:ITEM, an item file (cas, cat, fxi), a program as a UTF-8 text. With the 7 "
                    "arguments of git's external diff (GIT_EXTERNAL_DIFF=\"numalink-cli diff\"), its two files")
        ->required();
    command.add_flag("--json", options->json, "As JSON: rows with lines from 1, marks as [character, count]");
    command.add_option("--color", options->color, "Colours: \"auto\", \"always\", \"never\"")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    command.footer("Exit status: 0 the same (and for git), 1 different, 2 not done.");
    return [options] {
        const std::size_t count = options->sources.size();
        if (count != 2 && count != 7 && count != 9) return commandFailed("diff takes two sources, or git's arguments");
        return runDiff(*options);
    };
}

}  // namespace numalink
