// A row of the comparison is a block in both texts, so that they scroll as one. Colours are of blocks and characters:
// extra selections would cost as much as there are differences at every painting.
#include "shell/library/compare_window.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <array>
#include <vector>

#include "compare/program_compare.h"
#include "shell/editor/program_document.h"
#include "shell/library/item_paths.h"
#include "shell/library/signed_text.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "text/program_images.h"

namespace numalink {

namespace {

constexpr std::array<CompareSide, 2> bothSides = {CompareSide::left, CompareSide::right};

struct SideParts {
    QComboBox *choice = nullptr;
    SignedText *text = nullptr;
    QPushButton *takeOver = nullptr;  // into this side
    std::vector<CompareSource> sources;

    const CompareSource &chosen() const { return sources[static_cast<std::size_t>(choice->currentIndex())]; }
};

struct CompareWindow {
    QDialog *dialog = nullptr;
    SideParts left, right;
    QLabel *info = nullptr;
    QPushButton *previous = nullptr, *next = nullptr;
    ProgramComparison comparison;
    int current = -1;  // difference
    bool changed = false;

    SideParts &side(CompareSide which) { return which == CompareSide::left ? left : right; }
};
CompareWindow state;

enum class Tint { none, missing, changed, removed, added, moved };

// Of a row; one of the current difference is told apart by its strength.
QColor colorOf(Tint tint, bool strong) {
    constexpr std::pair<OwnColor, OwnColor> colors[] = {
        {},
        {OwnColor::missing, OwnColor::missingPicked},
        {OwnColor::changed, OwnColor::changedPicked},
        {OwnColor::removed, OwnColor::removedPicked},
        {OwnColor::added, OwnColor::addedPicked},
        {OwnColor::moved, OwnColor::movedPicked},
    };
    const auto &[usual, picked] = colors[static_cast<std::size_t>(tint)];
    return ownColor(strong ? picked : usual, state.dialog->palette());
}

std::ptrdiff_t lineOf(const CompareRow &row, CompareSide which) {
    return which == CompareSide::left ? row.left : row.right;
}

Tint tintOf(const CompareRow &row, CompareSide which) {
    if (row.kind == RowKind::same) return Tint::none;
    if (lineOf(row, which) < 0) return Tint::missing;
    if (row.moved >= 0) return Tint::moved;
    if (row.kind == RowKind::changed) return Tint::changed;
    return which == CompareSide::left ? Tint::removed : Tint::added;
}

// The colours alone don't tell everybody.
char16_t signOf(Tint tint) {
    constexpr char16_t signs[] = {0, 0, u'~', u'\u2212', u'+', u'\u2195'};
    return signs[static_cast<std::size_t>(tint)];
}

QTextBlockFormat blockFormatOf(Tint tint, bool strong) {
    QTextBlockFormat format;
    if (tint != Tint::none) format.setBackground(colorOf(tint, strong));
    return format;
}

void insertMarked(QTextCursor &cursor, const ViewLine &line, const std::vector<MarkedText> &marks) {
    QTextCharFormat marked;
    marked.setBackground(ownColor(OwnColor::differing, state.dialog->palette()));
    std::size_t at = 0;
    for (const MarkedText &mark : marks) {
        cursor.insertText(qtFromCodes(std::string_view(line.text).substr(at, mark.from - at)), {});
        cursor.insertText(qtFromCodes(std::string_view(line.text).substr(mark.from, mark.size)), marked);
        at = mark.from + mark.size;
    }
    cursor.insertText(qtFromCodes(std::string_view(line.text).substr(at)), {});
}

void fillSide(CompareSide which) {
    QPlainTextEdit &text = *state.side(which).text;
    const std::vector<ViewLine> &lines = which == CompareSide::left ? state.comparison.left : state.comparison.right;
    text.clear();
    QTextCursor cursor(text.document());
    cursor.beginEditBlock();
    bool isFirst = true;
    for (const CompareRow &row : state.comparison.rows) {
        const QTextBlockFormat format = blockFormatOf(tintOf(row, which), false);
        if (isFirst)
            cursor.setBlockFormat(format);
        else
            cursor.insertBlock(format, {});
        isFirst = false;
        SignedText::setSign(cursor.block(), signOf(tintOf(row, which)));
        const std::ptrdiff_t line = lineOf(row, which);
        if (line >= 0)
            insertMarked(cursor, lines[static_cast<std::size_t>(line)],
                         which == CompareSide::left ? row.leftMarks : row.rightMarks);
    }
    cursor.endEditBlock();
}

void tintDifference(int difference, bool strong) {
    if (difference < 0 || difference >= static_cast<int>(state.comparison.differences.size())) return;
    const RowRange range = state.comparison.differences[static_cast<std::size_t>(difference)];
    for (const CompareSide which : bothSides) {
        QTextDocument *document = state.side(which).text->document();
        for (std::size_t row = range.from; row < range.from + range.count; row++) {
            QTextCursor cursor(document->findBlockByNumber(static_cast<int>(row)));
            cursor.setBlockFormat(blockFormatOf(tintOf(state.comparison.rows[row], which), strong));
        }
    }
}

QString infoText() {
    const auto count = static_cast<int>(state.comparison.differences.size());
    const bool sameBytes = state.left.chosen().image == state.right.chosen().image;
    if (count == 0) return textOf(sameBytes ? Text::compareSame : Text::compareBytes);
    QString text = textOf(Text::compareCount, {std::to_string(state.current + 1), std::to_string(count)});
    const RowRange range = state.comparison.differences[static_cast<std::size_t>(std::max(state.current, 0))];
    const CompareRow &row = state.comparison.rows[range.from];
    if (row.moved >= 0) text += QStringLiteral("   ") + textOf(Text::compareMoved, {std::to_string(row.moved + 1)});
    return text;
}

void showCurrent() {
    const auto count = static_cast<int>(state.comparison.differences.size());
    state.info->setText(infoText());
    state.previous->setEnabled(state.current > 0);
    state.next->setEnabled(state.current + 1 < count);
    const bool mayWrite = !storeIsReadOnly() && state.current >= 0;
    for (const CompareSide which : bothSides)
        state.side(which).takeOver->setEnabled(mayWrite && state.side(which).chosen().id != noItem);
}

void goToDifference(int difference) {
    tintDifference(state.current, false);
    const auto count = static_cast<int>(state.comparison.differences.size());
    state.current = count == 0 ? -1 : std::clamp(difference, 0, count - 1);
    tintDifference(state.current, true);
    if (state.current >= 0) {
        const std::size_t row = state.comparison.differences[static_cast<std::size_t>(state.current)].from;
        for (const CompareSide which : bothSides) {
            QPlainTextEdit *text = state.side(which).text;
            text->setTextCursor(QTextCursor(text->document()->findBlockByNumber(static_cast<int>(row))));
            text->centerCursor();
        }
    }
    showCurrent();
}

void compareChosen(int difference) {
    state.current = -1;
    state.comparison = comparePrograms(state.left.chosen().image, state.right.chosen().image);
    for (const CompareSide which : bothSides) fillSide(which);
    goToDifference(difference);
}

// What is stored, in every entry that shows this item.
void readAgain(ItemId id) {
    const CompareSource fresh = compareSourceOf(id);
    for (const CompareSide which : bothSides)
        for (CompareSource &source : state.side(which).sources)
            if (source.id == id) source.image = fresh.image;
}

void takeOverInto(CompareSide which) {
    const ItemId id = state.side(which).chosen().id;
    if (state.current < 0 || id == noItem) return;
    Bytes image;
    const auto faults = takeOver(state.comparison, static_cast<std::size_t>(state.current), which, image);
    if (!faults.empty()) return tellFaults(faults);
    if (!writeProgramImage(id, std::move(image))) return;
    state.changed = true;
    readAgain(id);
    compareChosen(state.current);
}

void followScrolling(const QPlainTextEdit *from, const QPlainTextEdit *to) {
    QObject::connect(from->verticalScrollBar(), &QScrollBar::valueChanged, to->verticalScrollBar(),
                     &QScrollBar::setValue);
    QObject::connect(from->horizontalScrollBar(), &QScrollBar::valueChanged, to->horizontalScrollBar(),
                     &QScrollBar::setValue);
}

QPushButton *addButton(QBoxLayout *row, Text text, const char *key, std::function<void()> act) {
    auto *button = new QPushButton(textOf(text));
    button->setShortcut(QKeySequence(QString::fromLatin1(key)));
    button->setToolTip(textOf(text) + QStringLiteral(" (") + button->shortcut().toString(QKeySequence::NativeText) +
                       QLatin1Char(')'));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, state.dialog, std::move(act));
    row->addWidget(button);
    return button;
}

// The source itself ahead of the library's programs, unless it is one of them.
void fillChoice(SideParts &side, const CompareSource &source, const std::vector<CompareSource> &programs) {
    if (source.id == noItem && !source.label.isEmpty()) side.sources.push_back(source);
    side.sources.insert(side.sources.end(), programs.begin(), programs.end());
    int chosen = 0;
    for (const CompareSource &entry : side.sources) {
        if (source.id != noItem && entry.id == source.id) chosen = side.choice->count();
        side.choice->addItem(entry.label);
    }
    side.choice->setCurrentIndex(chosen);
}

void makeSide(SideParts &side, Text name, QBoxLayout *column) {
    side.choice = new QComboBox;
    side.choice->setAccessibleName(textOf(name));
    side.choice->setToolTip(textOf(name));
    side.choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    side.choice->setMinimumContentsLength(12);
    side.text = new SignedText;
    side.text->setUndoRedoEnabled(false);
    side.text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    side.text->setLineWrapMode(QPlainTextEdit::NoWrap);
    side.text->setFont(programFont());
    side.text->setTabChangesFocus(true);
    side.text->setAccessibleName(textOf(name));
    side.text->setToolTip(textOf(Text::tipCompareText));
    column->addWidget(side.choice);
    column->addWidget(side.text);
}

void makeButtons(QBoxLayout *layout) {
    auto *row = new QHBoxLayout;
    state.previous = addButton(row, Text::comparePrevious, "Alt+Up", [] { goToDifference(state.current - 1); });
    state.next = addButton(row, Text::compareNext, "Alt+Down", [] { goToDifference(state.current + 1); });
    state.right.takeOver = addButton(row, Text::compareToRight, "Alt+Right", [] { takeOverInto(CompareSide::right); });
    state.left.takeOver = addButton(row, Text::compareToLeft, "Alt+Left", [] { takeOverInto(CompareSide::left); });
    row->addStretch();
    row->addWidget(closeButtons(state.dialog));
    layout->addLayout(row);
}

void makeWindow(QDialog &dialog) {
    state.dialog = &dialog;
    dialog.setObjectName(QStringLiteral("compareDialog"));
    dialog.setWindowTitle(textOf(Text::compareTitle));
    auto *layout = new QVBoxLayout(&dialog);
    auto *sides = new QHBoxLayout;
    auto *left = new QVBoxLayout, *right = new QVBoxLayout;
    makeSide(state.left, Text::compareLeft, left);
    makeSide(state.right, Text::compareRight, right);
    sides->addLayout(left);
    sides->addLayout(right);
    layout->addLayout(sides);
    state.info = new QLabel;
    layout->addWidget(state.info);
    makeButtons(layout);
    followScrolling(state.left.text, state.right.text);
    followScrolling(state.right.text, state.left.text);
    const QSize room = mainWindow->screen()->availableSize() * 9 / 10;
    dialog.resize((QSize(900, 600) * textScale()).boundedTo(room));
}

std::vector<CompareSource> allPrograms() {
    std::vector<CompareSource> programs;
    const ItemId waiting = storeTempFolder();
    for (const ItemEntry &entry : storeListItems())
        if (isTextKind(entry.kind) && entry.parent != waiting)
            programs.push_back({.id = entry.id, .label = pathOfItem(entry), .image = {}});
    std::ranges::sort(programs, {}, &CompareSource::label);
    return programs;
}

// Images are read when they are chosen.
void readChosen() {
    for (const CompareSide which : bothSides) {
        SideParts &side = state.side(which);
        CompareSource &source = side.sources[static_cast<std::size_t>(side.choice->currentIndex())];
        if (source.id != noItem && source.image.empty()) source.image = compareSourceOf(source.id).image;
    }
}

}  // namespace

CompareSource compareSourceOf(ItemId id) {
    const auto entry = storeReadEntry(id);
    StoredItem item;
    if (!entry || !isTextKind(entry->kind) || !storeReadItem(id, item)) return {};
    return {.id = id, .label = pathOfItem(*entry), .image = std::move(item.data)};
}

void compareSources(const CompareSource &left, const CompareSource &right) {
    const std::vector<CompareSource> programs = allPrograms();
    if (left.label.isEmpty() && programs.empty()) return;
    state = {};
    QDialog dialog(mainWindow);
    makeWindow(dialog);
    fillChoice(state.left, left, programs);
    fillChoice(state.right, right, programs);
    const auto chosen = [] {
        readChosen();
        compareChosen(0);
    };
    QObject::connect(state.left.choice, &QComboBox::currentIndexChanged, &dialog, chosen);
    QObject::connect(state.right.choice, &QComboBox::currentIndexChanged, &dialog, chosen);
    chosen();
    state.left.text->setFocus();
    runDialog(dialog);
    const bool changed = state.changed;
    state = {};
    if (changed) showChangedItems();
}

bool mayCompare(ItemKind itemKind) { return isTextKind(itemKind); }

void compareSelected() {
    const CompareSource left = compareSourceOf(selectedItemId());
    if (left.label.isEmpty()) return;
    if (const std::vector<ItemId> ids = selectedItemIds(); ids.size() == 2)
        return compareSources(compareSourceOf(ids[0]), compareSourceOf(ids[1]));
    CompareSource right;
    for (const CompareSource &program : allPrograms())  // the next one by name
        if (program.id != left.id && (right.label.isEmpty() || right.label < left.label)) right = program;
    compareSources(left, right.label.isEmpty() ? left : right);
}

}  // namespace numalink
