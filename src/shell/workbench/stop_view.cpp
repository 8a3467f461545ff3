#include "shell/workbench/stop_view.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>
#include <QToolBar>
#include <map>

#include "debugger/breakpoints.h"
#include "debugger/profile.h"
#include "shell/editor/line_numbers.h"
#include "shell/editor/program_store.h"
#include "shell/editor/program_view.h"
#include "shell/editor/statement_marks.h"
#include "shell/parts/cut_label.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_place.h"
#include "shell/run/run_way.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/profile_pane.h"

namespace numalink {

namespace {

struct StopView {
    QToolBar *bar = nullptr;  // the main window's
    QLabel *line = nullptr;
    bool barWanted = false;
    // The stop that was brought into sight: later looks at it leave the text where it was scrolled to.
    ItemId seenIn = noItem;
    std::uint64_t seen = 0;
    std::map<int, LineMark> lines;  // of the program on view
};
StopView state;

LineMark markOf(int line) {
    const auto found = state.lines.find(line);
    return found == state.lines.end() ? LineMark{} : found->second;
}

QString reasonWords(const DebugStop &stop) {
    switch (stop.reason) {
        case StopReason::entry:
            return textOf(Text::stoppedEntry);
        case StopReason::breakpoint:
            return textOf(Text::stoppedBreakpoint) +
                   (stop.detail.empty() ? QString() : QStringLiteral(": ") + toQt(stop.detail));
        case StopReason::changed:
            return textOf(Text::stoppedChanged, {stop.detail});
        case StopReason::error:
            return textOf(Text::stoppedError, {stop.detail});
        case StopReason::pause:
            return textOf(Text::stoppedPause);
        case StopReason::end:
            return textOf(Text::stoppedEnd);
        case StopReason::backAtStart:
            return textOf(Text::stoppedOldest);
        case StopReason::step:
        case StopReason::none:
            break;
    }
    return textOf(Text::stoppedStep);
}

QString grouped(std::uint64_t number) { return QLocale().toString(static_cast<qulonglong>(number)); }

QString stopWords(const DebugStop &stop) {
    const DebugPlace &place = stop.place;
    QStringList words{reasonWords(stop)};
    words << toQt(statementText(place.program, cellOfPlace(place.program, place.line, place.statement)));
    words << textOf(Text::stopPlace,
                    {programNameShown(place.program), std::to_string(place.line), std::to_string(place.statement + 1)});
    if (canTakeNewRoad()) {
        words << textOf(Text::stopInPast, {grouped(stop.statement).toStdString(), grouped(stop.newest).toStdString()});
    } else {
        words << textOf(Text::stopCount, {grouped(stop.statement).toStdString()});
    }
    if (stop.isNewRoad) words << textOf(Text::stopNewRoad);
    if (storedSinceStart(place.item) || (place.item == viewItemId && programChanged()))
        words << textOf(Text::stopOldText);
    if (!besideProgram()) words << textOf(Text::stopOverView);
    return words.join(QStringLiteral("  \u00B7  "));
}

QString runWords() {
    if (!wayWords().isEmpty()) return wayWords();
    switch (runWaitsAt()) {
        case RunEnd::input:
            return textOf(Text::debugWaitsInput);
        case RunEnd::triangle:
        case RunEnd::cursor:
            return textOf(Text::debugWaitsKey);
        case RunEnd::end:
            return textOf(Text::debugEnded);
        default:
            return textOf(Text::debugRuns);
    }
}

void showWords() {
    const DebugStop *stop = shownStop();
    setCutWords(state.line, stop != nullptr ? stopWords(*stop) : runIsFollowed() ? runWords() : QString());
    state.bar->setVisible(state.barWanted || stop != nullptr);
}

// The text on view isn't the one that the run has.
bool isOtherText() { return storedSinceStart(viewItemId) || programChanged(); }

void addBreakpoints() {
    for (const Breakpoint &point : breakpointsOfItem(viewItemId)) {
        LineMark &mark = state.lines[point.line];
        const bool counts = point.enabled && !point.isLost;
        if (mark.sign != LineSign::breakpoint) mark.sign = counts ? LineSign::breakpoint : LineSign::idleBreakpoint;
        if (!point.condition.empty()) mark.words = toQt(point.condition);
    }
}

void addHeat() {
    if (!profileIsOn() || isOtherText()) return;
    std::map<int, std::uint64_t> units, counts;
    std::uint64_t hottest = 0;
    for (const ProfileRow &row : takenProfile().rows) {
        if (row.place.item != viewItemId) continue;
        counts[row.place.line] += row.count;
        hottest = std::max(hottest, units[row.place.line] += row.paceUnits);
    }
    for (const auto &[line, sum] : units) {
        if (sum == 0) continue;
        LineMark &mark = state.lines[line];
        mark.heat = static_cast<double>(sum) / static_cast<double>(hottest);
        mark.words = textOf(Text::profileTotal, {grouped(counts[line]).toStdString(),
                                                 QString::number(profileMilliseconds(sum)).toStdString()});
    }
}

void addNeverRun(std::vector<StatementMark> &marks) {
    for (const ProfileRow &row : takenProfile().rows)
        if (row.place.item == viewItemId && row.count == 0)
            marks.push_back({row.place.line, row.place.statement, StatementLook::neverRun});
}

// Of the programs in progress; in a text that was edited since, where they are found again. The statement to come is
// the last.
void addCalls(std::vector<StatementMark> &marks, bool inOtherText) {
    std::vector<DebugPlace> calls = shownCalls();
    std::erase_if(calls, [](const DebugPlace &place) { return place.item != viewItemId; });
    const auto isAgain = [&](const DebugPlace &place) {  // a program may have called itself many times
        return &place != &*std::ranges::find(calls, place);
    };
    const Bytes image = inOtherText ? imageOnView() : Bytes();
    for (auto call = calls.rbegin(); call != calls.rend(); ++call) {
        if (isAgain(*call)) continue;
        const std::optional<DebugPlace> place = inOtherText ? placeInText(*call, image) : *call;
        const bool isNext = *call == shownStop()->place;
        if (!place) continue;
        marks.push_back({place->line, place->statement, isNext ? StatementLook::next : StatementLook::calling});
        if (isNext) state.lines[place->line].isNext = true;
    }
}

std::vector<StatementMark> marksOfRun() {
    std::vector<StatementMark> marks;
    const bool inOtherText = isOtherText();
    if (neverRunShown() && !inOtherText) addNeverRun(marks);
    if (shownStop() != nullptr) addCalls(marks, inOtherText);
    return marks;
}

// Once for each stop.
void bringIntoSight(const std::vector<StatementMark> &marks) {
    const bool isSeen = state.seen == shownStopNumber() && state.seenIn == viewItemId;
    state.seenIn = viewItemId;
    state.seen = shownStopNumber();
    if (isSeen || marks.empty() || marks.back().look != StatementLook::next) return;
    showStatement(marks.back().line, marks.back().statement);
}

}  // namespace

void makeStopLine() {
    state.bar = new QToolBar(textOf(Text::debugBarName));
    state.bar->setObjectName(QStringLiteral("debugBar"));
    state.bar->setContextMenuPolicy(Qt::PreventContextMenu);
    nameMoreButton(state.bar);
    state.line = new QLabel;
    state.line->setObjectName(QStringLiteral("stopLine"));
    state.line->setTextFormat(Qt::PlainText);
    state.line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    cutToWidth(state.line);
    // The bar would hide a widget whose words are too long for it: the frame takes what room there is, the words are
    // cut.
    auto *frame = new QWidget;
    frame->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    auto *layout = new QHBoxLayout(frame);
    layout->setContentsMargins(8, 0, 8, 0);
    layout->addWidget(state.line);
    state.bar->addWidget(frame);
    mainWindow->addToolBarBreak();
    mainWindow->addToolBar(state.bar);
    state.bar->hide();
    lineMarkOf = markOf;
    wayMoved = showWords;
}

QToolBar *debugBar() { return state.bar; }

void showStopLine(bool show) {
    state.barWanted = show;
    showWords();
}

void showStopInProgram() {
    state.lines.clear();
    std::vector<StatementMark> marks;
    if (viewKind == kind::program) {
        addBreakpoints();
        addHeat();
        marks = marksOfRun();
    }
    markStatements(marks);
    bringIntoSight(marks);
    repaintLineNumbers();
    showWords();
}

void forgetStopView() { state = {}; }

}  // namespace numalink
