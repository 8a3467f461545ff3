#include "shell/editor/program_reading.h"

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTimer>

#include "language/folder_context.h"
#include "shell/editor/folding.h"
#include "shell/editor/indentation.h"
#include "shell/editor/language_tips.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_status.h"
#include "shell/editor/text_marks.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/own_colors.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int readingDelay = 40, problemsDelay = 500;  // milliseconds without a change
constexpr int largeProgram = 400;                      // lines; larger ones are read with the problems

struct Reading {
    ProgramReading made;
    const QTextDocument *document = nullptr;  // that it was made of, only compared
    int revision = -1;
    ProblemContext context;
    std::vector<std::string> programs;
    bool knowsContext = false;
    std::vector<Problem> problems;
    int problemsRevision = -1;                                 // of the text that they are of
    QTimer *readingTimer = nullptr, *problemsTimer = nullptr;  // the edit's
};
Reading state;

void readContext() {
    if (state.knowsContext) return;
    state.knowsContext = true;
    state.context = viewItemId != noItem ? problemContextOf(viewItemId) : problemContextAlone();
    state.programs.clear();
    if (!state.context.name.empty()) state.programs.push_back(state.context.name);
    for (const ProgramSummary &other : state.context.folder) state.programs.push_back(other.name);
}

QColor colorOf(Severity severity) {
    switch (severity) {
        case Severity::error:
            return ownColor(OwnColor::error, programEdit->palette());
        case Severity::warning:
            return ownColor(OwnColor::warning, programEdit->palette());
        case Severity::hint:
            break;
    }
    return ownColor(OwnColor::hint, programEdit->palette());
}

void markProblems() {
    QList<QTextEdit::ExtraSelection> marks;
    for (const Problem &problem : state.problems) {
        QTextCharFormat format;
        format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        format.setUnderlineColor(colorOf(severityOf(problem.kind)));
        const int from = positionOfByte(state.made, problem.at);
        marks << textMark(from, std::max(from, positionOfByte(state.made, problem.at + problem.length)), format);
    }
    setTextMarks(MarkLayer::problems, std::move(marks));
}

bool isProgramOnView() { return isTextKind(viewKind) && programEdit->isVisible(); }

// What the calculator would still have room for; the checksum counts.
void tellSize() {
    if (!programEdit->document()->isUndoAvailable()) return;
    const std::size_t size = programReading().text.image.size() + 1;
    const auto left = std::int64_t{memoryOfCalculator()} - static_cast<std::int64_t>(size);
    statusLine(StatusPart::item, Text::sizeLeft, {std::to_string(size), std::to_string(left)});
}

void readSoon() {
    if (!isProgramOnView()) return;
    indentLines(programReading());
    foldLines(programReading());
    markPartners();
    tellSize();
    readingChanged();
}

void findProblems() {
    if (!isProgramOnView()) return;
    readContext();
    const ProgramReading &reading = programReading();
    if (programEdit->blockCount() > largeProgram) readSoon();
    state.problems = problemsOf(reading.structure, state.context);
    state.problemsRevision = state.revision;
    std::erase_if(state.problems, [&](const Problem &problem) { return isInFaultyLine(reading.text, problem.at); });
    markProblems();
    problemsChanged();
}

QTimer *madeTimer(int delay, void (*run)()) {
    auto *timer = new QTimer(programEdit);
    timer->setSingleShot(true);
    timer->setInterval(delay);
    QObject::connect(timer, &QTimer::timeout, programEdit, run);
    return timer;
}

}  // namespace

const ProgramReading &programReading() {
    const QTextDocument *document = programEdit->document();
    if (state.document == document && state.revision == document->revision()) return state.made;
    state.document = document;
    state.revision = document->revision();
    std::vector<TextLine> lines;
    lines.reserve(static_cast<std::size_t>(document->blockCount()));
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        ViewLine line;
        LineReading read = readBlock(block, line);
        appendLine(lines, line.text.size(), std::move(read));
    }
    state.made.text = programText(std::move(lines));
    state.made.structure = structureOf(state.made.text.image);
    return state.made;
}

const ProgramReading &programReadingBefore() { return state.document == nullptr ? programReading() : state.made; }

std::size_t byteAtPosition(const ProgramReading &reading, int position) {
    const QTextBlock block = programEdit->document()->findBlock(position);
    return byteOfPlace(reading.text, {static_cast<std::size_t>(std::max(0, block.blockNumber())),
                                      static_cast<std::size_t>(std::max(0, position - block.position()))});
}

int positionOfByte(const ProgramReading &reading, std::size_t at) {
    const TextPlace place = placeOfByte(reading.text, at);
    const QTextBlock block = programEdit->document()->findBlockByNumber(static_cast<int>(place.line));
    if (!block.isValid()) return programEdit->document()->characterCount() - 1;
    return block.position() + std::min(static_cast<int>(place.character), block.length() - 1);
}

TextStretch stretchOfTokens(const ProgramReading &reading, std::size_t first, std::size_t count) {
    const auto &tokens = reading.structure.tokens;
    if (first >= tokens.size() || count == 0) return {};
    const ProgramToken &last = tokens[std::min(first + count, tokens.size()) - 1];
    const int from = positionOfByte(reading, tokens[first].at);
    return {from, std::max(from, positionOfByte(reading, last.at + last.length))};
}

const std::vector<Problem> &problemsOnView() { return state.problems; }

const std::vector<Problem> &problemsNow() {
    if (programEdit->document()->revision() != state.problemsRevision) findProblems();
    return state.problems;
}

const std::vector<std::string> &programsOfFolder() {
    readContext();
    return state.programs;
}

void programTextChanged() {
    if (state.problemsTimer == nullptr) {
        state.readingTimer = madeTimer(readingDelay, readSoon);
        state.problemsTimer = madeTimer(problemsDelay, findProblems);
    }
    if (programEdit->blockCount() <= largeProgram) state.readingTimer->start();
    state.problemsTimer->start();
}

void programTextOpened() {
    state.knowsContext = false;
    state.document = nullptr;
    state.problems.clear();
    state.problemsRevision = -1;
    indentLines(programReading());
    foldLines(programReading());
    programTextChanged();
}

void forgetProgramReading() { state = {}; }

}  // namespace numalink
