#include "shell/workbench/code_commands.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QVBoxLayout>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "shell/editor/completion_list.h"
#include "shell/editor/language_tips.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_reading.h"
#include "shell/editor/program_store.h"
#include "shell/parts/command_states.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/selection.h"
#include "shell/tree/tree_rules.h"
#include "shell/views/item_views.h"
#include "shell/workbench/code_panes.h"
#include "store/item_store.h"
#include "store/undo/undo.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::size_t placeLimit = 50;

struct VisitedPlace {
    ItemId item = noItem;
    int position = 0;
};
struct Visits {
    std::vector<VisitedPlace> behind, ahead;
};
Visits state;

VisitedPlace placeNow() { return {viewItemId, programEdit->textCursor().position()}; }

void notePlace() {
    state.behind.push_back(placeNow());
    if (state.behind.size() > placeLimit) state.behind.erase(state.behind.begin());
    state.ahead.clear();
    commandStatesChanged();
}

void select(int from, int to) {
    QTextCursor cursor(programEdit->document());
    cursor.setPosition(to);
    cursor.setPosition(from, QTextCursor::KeepAnchor);
    programEdit->setTextCursor(cursor);
    programEdit->ensureCursorVisible();
    programEdit->setFocus();
}

bool visit(std::vector<VisitedPlace> &from, std::vector<VisitedPlace> &to) {
    while (!from.empty()) {
        const VisitedPlace place = from.back();
        from.pop_back();
        const VisitedPlace left = placeNow();
        if (place.item != viewItemId && (!storeReadEntry(place.item) || !selectItem(place.item))) continue;
        to.push_back(left);
        const int position = std::min(place.position, programEdit->document()->characterCount() - 1);
        select(position, position);
        commandStatesChanged();
        return true;
    }
    return false;
}

// The name that the caret stands at: of the token behind it, else of the one ahead.
std::optional<ProgramName> nameAtCaret() {
    const ProgramReading &reading = programReading();
    const std::size_t at = byteAtPosition(reading, programEdit->textCursor().position());
    const auto name = nameAt(reading.structure, tokenAt(reading.structure, at));
    return name || at <= 1 ? name : nameAt(reading.structure, tokenAt(reading.structure, at - 1));
}

// The program of that name in the folder of the one on view.
std::optional<ItemEntry> programNamedBeside(const std::string &name) {
    const auto own = storeReadEntry(viewItemId);
    if (!own) return std::nullopt;
    for (const ItemEntry &sibling : storeListChildren(own->parent))
        if (sibling.kind == kind::program && sameProgramName(sibling.name, name)) return sibling;
    return std::nullopt;
}

void replaceStretch(QTextCursor &cursor, int from, int to, ByteView bytes) {
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    insertLine(cursor, lineOfTokens(bytes));
}

// An edit line for a name; the text as it was typed, nothing when cancelled.
std::optional<std::string> askName(const QString &title, const QString &before) {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("renameDialog"));
    dialog.setWindowTitle(title);
    auto *typed = new QLineEdit(before);
    typed->setMaxLength(static_cast<int>(storeNameLimit));
    typed->selectAll();
    auto *label = new QLabel(textOf(Text::renameNewName));
    label->setBuddy(typed);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(typed);
    layout->addWidget(dialogButtons(&dialog));
    typed->setToolTip(label->text().remove(QLatin1Char('&')));
    dialog.resize(dialog.sizeHint().expandedTo(QSize(grown(260), 0)));
    if (runDialog(dialog) != QDialog::Accepted) return std::nullopt;
    return typed->text().toStdString();
}

void renameLabel(const ProgramName &name) {
    const auto typed = askName(textOf(Text::renameLabelTitle, {utf8FromCalculator(name.shown)}), nameToQt(name.shown));
    if (!typed) return;
    const auto tokens = labelTokens(calculatorFromUtf8(*typed));
    if (!tokens) {
        tellUser(Text::renameNoLabel, {*typed});
        return;
    }
    const ProgramReading &reading = programReading();
    if (!labelIsFree(reading.structure, name.label, *tokens)) {
        tellUser(Text::renameLabelTaken, {*typed});
        return;
    }
    std::vector<TextStretch> places;
    for (const NameUse &use : usesOf(reading.structure, name))
        places.push_back(stretchOfTokens(reading, use.first, use.count));
    QTextCursor cursor(programEdit->document());
    cursor.beginEditBlock();
    for (auto place = places.rbegin(); place != places.rend(); ++place)
        replaceStretch(cursor, place->from, place->to, *tokens);
    cursor.endEditBlock();
}

// The item and all that call it, in one step of undo.
bool renameWithCalls(const ItemEntry &item, const std::string &name) {
    const UndoGroup group(UndoAct::rename, name);
    for (const ItemEntry &sibling : storeListChildren(item.parent)) {
        StoredItem caller;
        if (!isTextKind(sibling.kind) || !storeReadItem(sibling.id, caller)) continue;
        Bytes image = withCallsRenamed(caller.data, item.name, name);
        if (image == caller.data) continue;
        auto info = decodeProgramInfo(caller.head);
        if (info && info->imageLength == caller.data.size()) {
            info->imageLength = static_cast<std::uint32_t>(image.size());
            caller.head = encodeProgramInfo(*info);
        }
        const NewItem changed{.name = caller.name,
                              .parent = caller.parent,
                              .kind = caller.kind,
                              .head = caller.head,
                              .data = std::move(image)};
        if (!storeWriteItem(caller.id, changed)) return false;
    }
    return renameItem(item, name);
}

void renameProgram(const std::string &called) {
    const auto item = programNamedBeside(called);
    if (!item) {
        tellUser(Text::problemProgramMissing, {utf8FromCalculator(called)});
        return;
    }
    const auto typed =
        askName(textOf(Text::renameProgramTitle, {utf8FromCalculator(item->name)}), nameToQt(item->name));
    if (!typed || *typed == utf8FromCalculator(item->name)) return;
    if (const auto fault = nameFault(*item, *typed)) {
        tellUser(*fault);
        return;
    }
    if (!storeProgramFirst()) return;
    renameWithCalls(*item, calculatorFromUtf8(*typed));
    refreshTreeNow();
    reopenView();
}

}  // namespace

void completeAtCaret() { completeNow(); }

void explainAtCaret() { signatureShown() ? hideSignature() : showSignature(); }

void mendAtCaret() {
    const ProgramReading &reading = programReading();
    const int position = programEdit->textCursor().position();
    const std::size_t line = lineOf(reading.structure, byteAtPosition(reading, position));
    const Problem *found = nullptr;
    for (const Problem &problem : problemsNow()) {
        if (!problem.mend || lineOf(reading.structure, problem.at) != line) continue;
        const bool isAtCaret = positionOfByte(reading, problem.at) <= position &&
                               position <= positionOfByte(reading, problem.at + problem.length);
        if (found == nullptr || isAtCaret) found = &problem;
        if (isAtCaret) break;
    }
    if (found == nullptr || programEdit->isReadOnly()) return statusLine(StatusPart::item, Text::nothingToMend);
    const ProblemMend mend = *found->mend;
    QTextCursor cursor(programEdit->document());
    cursor.beginEditBlock();
    replaceStretch(cursor, positionOfByte(reading, mend.at), positionOfByte(reading, mend.at + mend.length),
                   mend.bytes);
    cursor.endEditBlock();
    programEdit->setTextCursor(cursor);
}

void goToNextProblem() {
    const std::vector<Problem> &problems = problemsNow();
    if (problems.empty()) return statusLine(StatusPart::item, Text::noProblems);
    const ProgramReading &reading = programReading();
    const int position = std::min(programEdit->textCursor().position(), programEdit->textCursor().anchor());
    const Problem *next = &problems.front();
    for (auto problem = problems.rbegin(); problem != problems.rend(); ++problem)
        if (positionOfByte(reading, problem->at) > position) next = &*problem;
    select(positionOfByte(reading, next->at), positionOfByte(reading, next->at + next->length));
    statusLine(StatusPart::item, Text::plainText, {problemText(*next)});
}

void goToDefinition() {
    const auto name = nameAtCaret();
    if (!name) return statusLine(StatusPart::item, Text::noNameAtCaret);
    const ProgramReading &reading = programReading();
    if (name->kind == NameKind::program) {
        const auto item = programNamedBeside(name->program);
        if (!item)
            return statusLine(StatusPart::item, Text::problemProgramMissing, {utf8FromCalculator(name->program)});
        const VisitedPlace left = placeNow();
        if (item->id != viewItemId && !selectItem(item->id)) return;
        state.behind.push_back(left);
        state.ahead.clear();
        select(0, 0);
        return commandStatesChanged();
    }
    for (const NameUse &use : usesOf(reading.structure, *name)) {
        if (use.kind == NameUseKind::reads) continue;
        const TextStretch stretch = stretchOfTokens(reading, use.first, use.count);
        notePlace();
        return select(stretch.from, stretch.to);
    }
    statusLine(StatusPart::item, Text::noNameAtCaret);
}

void goBack() { visit(state.behind, state.ahead); }
void goForward() { visit(state.ahead, state.behind); }
bool canVisitBack() { return !state.behind.empty(); }
bool canVisitForward() { return !state.ahead.empty(); }

void findUses() {
    const auto name = nameAtCaret();
    if (!name) return statusLine(StatusPart::item, Text::noNameAtCaret);
    showUsesOf(*name);
}

void renameAtCaret() {
    if (programEdit->isReadOnly()) return;
    const auto name = nameAtCaret();
    if (name && name->kind == NameKind::label) return renameLabel(*name);
    if (name && name->kind == NameKind::program) return renameProgram(name->program);
    // Elsewhere the program on view itself is meant.
    if (const auto own = storeReadEntry(viewItemId)) renameProgram(own->name);
}

void showBytes(std::size_t at, std::size_t length) {
    notePlace();
    const ProgramReading &reading = programReading();
    select(positionOfByte(reading, at), positionOfByte(reading, at + length));
}

void showInItem(ItemId item, std::size_t at, std::size_t length) {
    const VisitedPlace left = placeNow();
    if (item != viewItemId && !selectItem(item)) return;
    state.behind.push_back(left);
    const ProgramReading &reading = programReading();
    select(positionOfByte(reading, at), positionOfByte(reading, at + length));
    commandStatesChanged();
}

void forgetCodeCommands() { state = {}; }

}  // namespace numalink
