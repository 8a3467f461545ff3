// Invariants of the document, true between any two events:
//   (1) A character that the user typed has no origin; Qt never hands it that of its neighbour, since every way in
//       (keys, input methods, paste, drop, symbols) inserts with a format of its own.
//   (2) Every block that changed has been converted and coloured; changes by undo and redo are only coloured.
#include "shell/editor/program_view.h"

#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>
#include <vector>

#include "calculator/charset.h"
#include "shell/editor/completion_list.h"
#include "shell/editor/folding.h"
#include "shell/editor/indentation.h"
#include "shell/editor/language_tips.h"
#include "shell/editor/line_numbers.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_edit.h"
#include "shell/editor/program_reading.h"
#include "shell/editor/program_store.h"
#include "shell/editor/statement_marks.h"
#include "shell/editor/text_marks.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/shell_texts.h"
#include "store/item_store.h"
#include "text/lenient_text.h"
#include "text/token_table.h"

namespace numalink {

namespace {

struct Caret {
    int anchor = 0;
    int position = 0;
};

// Where the caret stood ahead of a change and behind it; undoSteps names the change.
struct CaretStep {
    int undoSteps;
    Caret before;
    Caret after;
};

// A program that was left in this run, with the undo of its text.
struct KeptProgram {
    ItemId id = noItem;
    Bytes image;  // as it was stored when it was left
    QTextDocument *document = nullptr;
    std::vector<CaretStep> caretSteps;
    Caret caret;
};
constexpr std::size_t keptProgramLimit = 16;

struct ProgramView {
    std::vector<KeptProgram> kept;  // the one that was left last is the last
    QString reference;              // the text as it was opened or last stored
    bool filling = false;           // the document's changes are ours
    bool travelling = false;        // by undo or redo
    int changedFrom = -1;           // characters changed since the last conversion, or -1
    int changedTo = -1;
    Caret lastCaret;
    int blankAddedAt = -1;  // where the caret stands behind a blank that a conversion has added, or -1
    std::vector<CaretStep> caretSteps;
};
ProgramView state;

QTextDocument *document() { return programEdit->document(); }

Caret caretNow() {
    const QTextCursor cursor = programEdit->textCursor();
    return {cursor.anchor(), cursor.position()};
}

void putCaret(const Caret &caret) {
    const int end = document()->characterCount() - 1;
    QTextCursor cursor = programEdit->textCursor();
    cursor.setPosition(std::min(caret.anchor, end));
    cursor.setPosition(std::min(caret.position, end), QTextCursor::KeepAnchor);
    programEdit->setTextCursor(cursor);
}

// Qt tells of a change in the middle of it, when the document must not be touched: what is to be read anew is noted
// here, and done in contentsChanged.
void contentsChange(int position, int, int added) {
    if (state.filling) return;
    state.changedFrom = state.changedFrom < 0 ? position : std::min(state.changedFrom, position);
    state.changedTo = std::max(state.changedTo, position + added);
}

// The changed blocks, by number: conversion moves positions but makes no blocks.
void convertChanged(int firstBlock, int lastBlock) {
    const Caret before = state.lastCaret;
    for (int number = firstBlock; number <= lastBlock; number++) convertBlock(document()->findBlockByNumber(number));
    // Qt joins a key to the one before it while the document counts as modified.
    document()->setModified(false);
    const int steps = document()->availableUndoSteps();
    // A new edit ends what could be redone, and the carets of it.
    std::erase_if(state.caretSteps, [&](const CaretStep &step) { return step.undoSteps >= steps; });
    state.caretSteps.push_back({steps, before, caretNow()});
}

void contentsChanged() {
    if (state.filling || state.changedFrom < 0) return;
    state.filling = true;
    const int firstBlock = document()->findBlock(state.changedFrom).blockNumber();
    const QTextBlock last = document()->findBlock(state.changedTo);
    const int lastBlock = last.isValid() ? last.blockNumber() : document()->blockCount() - 1;
    state.changedFrom = state.changedTo = -1;
    // What undo brings back was converted when it was typed. Another conversion would be an edit, and end what can be
    // redone.
    if (!state.travelling) convertChanged(firstBlock, lastBlock);
    for (int number = firstBlock; number <= lastBlock; number++) colorBlock(document()->findBlockByNumber(number));
    state.filling = false;
    state.lastCaret = caretNow();
    programTextChanged();
    updateLineNumbers();
    saveDraftSoon();
    programEdited();
}

void caretMoved() {
    if (state.filling) return;
    state.lastCaret = caretNow();
    showHiddenCaret();
    markPartners();
    if (signatureShown()) showSignature();
}

// Typed text comes in with no format of its surroundings, and in an edit block: Qt joins nothing to a lone insertion.
void insertTyped(QTextCursor cursor, const QString &text) {
    cursor.beginEditBlock();
    cursor.insertText(text, QTextCharFormat());
    cursor.endEditBlock();
}

// What keyboards have for characters of the calculators, such as a dash.
QString withKnownCharacters(const QString &text) {
    std::string known;
    for (const uint character : text.toUcs4())
        if (const char32_t other = lenientCharacter(character); other != 0) appendUtf8(known, other);
    return QString::fromStdString(known);
}

// What begins an argument, or ends the command that takes them, shows the signature.
void signatureTyped(const QString &text) {
    const bool begins = text == QLatin1String("(") || text == QLatin1String(",") || text == QLatin1String(" ");
    if (!completesWhileTyping() || !(begins || state.blankAddedAt >= 0)) return;
    completionShown() ? hideSignature() : showSignature();  // the list would lie over it
}

// A command may bring its final blank with it ("Then "): the one that is typed behind it is that blank.
void typeText(const QString &text) {
    const bool isBlank = text == QLatin1String(" ");
    const bool isThere =
        isBlank && !programEdit->textCursor().hasSelection() && caretNow().position == state.blankAddedAt;
    state.blankAddedAt = -1;
    if (isThere) return;
    insertTyped(programEdit->textCursor(), withKnownCharacters(text));
    const int position = caretNow().position;
    if (!isBlank && document()->characterAt(position - 1) == QLatin1Char(' ')) state.blankAddedAt = position;
    programEdit->ensureCursorVisible();
    completionTyped();
    signatureTyped(text);
}

bool isTypedText(const QKeyEvent &key) {
    const auto held = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const bool isShortcut = held != 0 && held != (Qt::ControlModifier | Qt::AltModifier);
    return !isShortcut && !key.text().isEmpty() && key.text().at(0).isPrint();
}

bool keyPressed(const QKeyEvent &key) {
    if (completionKey(key)) return true;
    if (key.key() == Qt::Key_Escape && signatureShown()) {
        hideSignature();
        return true;
    }
    if (key.matches(QKeySequence::Undo)) {
        undoInProgram();
    } else if (key.matches(QKeySequence::Redo)) {
        redoInProgram();
    } else if (!programEdit->isReadOnly() && key.matches(QKeySequence::InsertLineSeparator)) {
        programEdit->textCursor().insertBlock();
    } else if (!programEdit->isReadOnly() && isTypedText(key)) {
        typeText(key.text());
    } else {
        return false;
    }
    return true;
}

// The text that an input method is done with is put in by Qt, in the format that the cursor has by then.
void committing(const QInputMethodEvent &event) {
    if (event.commitString().isEmpty()) return;
    // What is selected goes first, since its format would be the cursor's.
    QTextCursor cursor = programEdit->textCursor();
    cursor.removeSelectedText();
    programEdit->setTextCursor(cursor);
    programEdit->setCurrentCharFormat(QTextCharFormat());
}

bool editEvent(QWidget *, QEvent *event) {
    switch (event->type()) {
        case QEvent::KeyPress:
            return keyPressed(*static_cast<QKeyEvent *>(event));
        case QEvent::InputMethod:
            committing(*static_cast<QInputMethodEvent *>(event));
            return false;
        case QEvent::PaletteChange:
            recolorProgram();
            return false;
        case QEvent::FocusOut:
        case QEvent::Hide:
            closeCompletion();
            hideSignature();
            return false;
        default:
            return false;
    }
}

// A tip of what is under the pointer; the list closes where a click leads elsewhere.
bool viewportEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::ToolTip) return showTokenTip(*static_cast<QHelpEvent *>(event));
    if (event->type() == QEvent::MouseButtonPress) closeCompletion();
    return false;
}

void useDocument(QTextDocument *shown) {
    state.filling = true;
    closeCompletion();
    hideSignature();
    forgetTextMarks();  // they are the other document's
    programEdit->setDocument(shown);
    state.filling = false;
}

// One that only the view changes, and only while it is shown.
QTextDocument *newDocument() {
    auto *made = new QTextDocument(programEdit);
    made->setDocumentLayout(new IndentedLayout(made));
    made->setDefaultFont(programEdit->font());
    QObject::connect(made, &QTextDocument::contentsChange, programEdit, contentsChange);
    QObject::connect(made, &QTextDocument::contentsChanged, programEdit, contentsChanged);
    return made;
}

QString shownText(ByteView image) {
    QString text;
    for (const ViewLine &line : viewLines(image)) text += qtFromCodes(line.text) + QLatin1Char('\n');
    text.chop(1);
    return text;
}

// Shows the document that a program was left with. False when the program has become another since.
bool showKept(ItemId id, ByteView image) {
    const auto found = std::ranges::find(state.kept, id, &KeptProgram::id);
    if (found == state.kept.end()) return false;
    KeptProgram kept = std::move(*found);
    state.kept.erase(found);
    const bool isSame = std::ranges::equal(kept.image, image) && kept.document->toPlainText() == shownText(image);
    QTextDocument *unused = isSame ? document() : kept.document;
    if (isSame) {
        useDocument(kept.document);
        state.caretSteps = std::move(kept.caretSteps);
        putCaret(kept.caret);
    }
    delete unused;
    return isSame;
}

void fill(const std::vector<ViewLine> &lines) {
    document()->setUndoRedoEnabled(false);
    document()->clear();
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    for (std::size_t i = 0; i < lines.size(); i++) {
        if (i > 0) cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
        insertLine(cursor, lines[i]);
    }
    cursor.endEditBlock();
    for (std::size_t i = 0; i < lines.size(); i++)
        rememberLine(document()->findBlockByNumber(static_cast<int>(i)), lines[i]);
    document()->setUndoRedoEnabled(true);
}

}  // namespace

void makeProgramEdit() {
    programEdit = new ProgramEdit(clientArea);
    programEdit->setObjectName(QStringLiteral("programEdit"));
    programEdit->setAccessibleName(textOf(Text::settingsEditor));
    programEdit->setFont(programFont());
    programEdit->setLineWrapMode(QPlainTextEdit::NoWrap);
    programEdit->setTabChangesFocus(true);
    programEdit->setFrameShape(QFrame::NoFrame);
    programEdit->hide();
    lineNumberEdit = new QWidget(clientArea);
    lineNumberEdit->setObjectName(QStringLiteral("lineNumberEdit"));
    lineNumberEdit->setAccessibleName(textOf(Text::lineNumbersName));
    lineNumberEdit->setFocusPolicy(Qt::NoFocus);
    lineNumberEdit->hide();
}

void connectProgramView() {
    useDocument(newDocument());
    QObject::connect(programEdit, &QPlainTextEdit::cursorPositionChanged, programEdit, caretMoved);
    QObject::connect(programEdit, &QPlainTextEdit::selectionChanged, programEdit, caretMoved);
    QObject::connect(programEdit, &QPlainTextEdit::updateRequest, programEdit, updateLineNumbers);
    hookEvents(programEdit, editEvent);
    hookEvents(programEdit->viewport(), viewportEvent);
    connectLineNumbers();
    connectFolding();
}

// The documents of the kept programs are the edit's children, and go with it.
void forgetProgramView() {
    state = {};
    forgetColors();
    forgetTextMarks();
    forgetCompletion();
    forgetLanguageTips();
    forgetFolding();
    forgetProgramReading();
}

void forgetKeptPrograms() {
    for (const KeptProgram &kept : state.kept) delete kept.document;
    state.kept.clear();
}

void openProgram(ItemId id, ByteView image) {
    if (!showKept(id, image)) return programToView(image);
    state.filling = true;
    readColors();
    programEdit->setReadOnly(tokenCount() == 0 || storeIsReadOnly());
    colorDocument();
    state.filling = false;
    programEdit->ensureCursorVisible();
    state.lastCaret = caretNow();
    state.blankAddedAt = -1;
    takeReference();
    programTextOpened();
    updateLineNumbers();
}

void keepProgram(ItemId id, ByteView image) {
    std::erase_if(state.kept, [&](const KeptProgram &kept) { return kept.id == id; });
    if (state.kept.size() == keptProgramLimit) {
        delete state.kept.front().document;
        state.kept.erase(state.kept.begin());
    }
    state.kept.push_back({id, {image.begin(), image.end()}, document(), std::move(state.caretSteps), caretNow()});
    state.caretSteps.clear();
    useDocument(newDocument());
    takeReference();
}

void programToView(ByteView image) {
    state.filling = true;
    readColors();
    fill(viewLines(image));
    programEdit->setReadOnly(tokenCount() == 0 || storeIsReadOnly());
    colorDocument();
    document()->setModified(false);
    state.caretSteps.clear();
    state.filling = false;
    putCaret({});
    programEdit->ensureCursorVisible();
    state.lastCaret = {};
    takeReference();
    programTextOpened();
    updateLineNumbers();
}

QString viewToText() { return programEdit->toPlainText(); }

bool programChanged() { return viewToText() != state.reference; }

void takeReference() { state.reference = viewToText(); }

void replaceProgramText(const QString &text) {
    const QString now = viewToText();
    const qsizetype shorter = std::min(now.size(), text.size());
    qsizetype ahead = 0;
    while (ahead < shorter && now[ahead] == text[ahead]) ahead++;
    qsizetype behind = 0;
    while (behind < shorter - ahead && now[now.size() - behind - 1] == text[text.size() - behind - 1]) behind++;
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(ahead));
    cursor.setPosition(static_cast<int>(now.size() - behind), QTextCursor::KeepAnchor);
    insertTyped(cursor, text.mid(ahead, text.size() - ahead - behind));
}

void recolourLine() {
    state.filling = true;
    const QTextBlock block = programEdit->textCursor().block();
    convertBlock(block);
    colorBlock(block);
    state.filling = false;
}

void recolorProgram() {
    state.filling = true;
    readColors();
    colorDocument();
    state.filling = false;
}

void putCaretAt(int position) {
    putCaret({position, position});
    programEdit->ensureCursorVisible();
}

void selectStatement(int line, int statement) {
    const std::optional<TextRange> range = rangeOfStatement(line, statement);
    if (!range) return;
    putCaret({range->to, range->from});
    programEdit->ensureCursorVisible();
}

void undoInProgram() {
    const int steps = document()->availableUndoSteps();
    state.travelling = true;
    programEdit->undo();
    state.travelling = false;
    document()->setModified(false);
    const auto step = std::ranges::find(state.caretSteps, steps, &CaretStep::undoSteps);
    if (step != state.caretSteps.end()) putCaret(step->before);
}

void redoInProgram() {
    state.travelling = true;
    programEdit->redo();
    state.travelling = false;
    document()->setModified(false);
    const auto step = std::ranges::find(state.caretSteps, document()->availableUndoSteps(), &CaretStep::undoSteps);
    if (step != state.caretSteps.end()) putCaret(step->after);
}

void commandPutIn() {
    const int position = caretNow().position;
    if (position > 0 && document()->characterAt(position - 1) == QLatin1Char(' ')) state.blankAddedAt = position;
}

void typeSymbol(char code) {
    if (programEdit->isReadOnly()) return;
    typeText(qtFromCodes(std::string_view(&code, 1)));
    programEdit->setFocus();
}

void updateLineNumbers() {
    repaintLineNumbers();
    repaintFolding();
}

}  // namespace numalink
