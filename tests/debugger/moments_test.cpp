// Runs that are saved and gone on with: wherever a run is cut, it goes on as it would have gone without.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <utility>

#include "debugger/debugger.h"
#include "debugger/history.h"
#include "debugger/moments.h"
#include "debugger/trace.h"
#include "emulator/expressions.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/cells.h"
#include "emulator/machine/key_port.h"
#include "emulator/machine/programs.h"
#include "emulator/run_files.h"
#include "emulator/screens/display.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "platform/clock.h"
#include "support/ui_recorder.h"
#include "telling/language_table.h"

namespace numalink {

namespace {

// What a run came by and left.
struct Course {
    std::map<std::uint64_t, std::uint64_t> digests;  // ahead of some statements, by how many are over
    std::uint64_t digest = 0, statements = 0;
    RunEnd ended = RunEnd::running;
    Bytes atEnd;  // the moment of the run when it is over
};

std::map<std::uint64_t, std::uint64_t> digests;
std::uint64_t digestEvery = 1, imageAt = UINT64_MAX;
bool wantsEnd = false;

// A report counts where it is made, so the trace of those goes: a resumed run has but those from the moment on.
constexpr DebugTrace digestTrace = {
    .statement =
        [](int, int) {
            machine.errorTrace = nullptr;
            if (machine.statementsRun == imageAt) historyCut(imageAt, true, true);
            if (machine.statementsRun % digestEvery == 0) digests[machine.statementsRun] = machineDigest();
        },
    .report = [](const char *) {},
    .screenMode = [](int) {},
};

struct KeysTaken {
    std::size_t waits = 0, getKeys = 0;
};
KeysTaken keysTaken, keysAtMoment;
KeyPort scriptPort;
Bytes momentGiven;

constexpr KeyPort countingPort = {
    .getKey =
        [] {
            keysTaken.getKeys++;
            return scriptPort.getKey();
        },
    .waitKey =
        [] {
            const int key = scriptPort.waitKey();
            if (key != noKeyAnyMore) keysTaken.waits++;
            return key;
        },
};

// A machine on which something else has run.
void wearMachine() {
    machine.variables.fill(complexReal(7));
    machine.ans = complexReal(8);
    machine.window.fill(complexReal(9));
    machine.plotCurrent = {3, 4};
    for (int picture = 1; picture <= memoryCount; picture++) pictureMemory(picture)->dots.assign(8192, 1);
    randomGoOn(4711);
    printText("WORN", pixelColor::green, false);
}

Course courseOf(const RunFile &file, const RunScript &script, const Moment *from = nullptr,
                std::uint64_t askedAt = UINT64_MAX) {
    const RecordedUi recorded;
    freshMachine(file);
    if (from != nullptr) wearMachine();
    digests.clear();
    keysTaken = {};
    debugTrace = &digestTrace;
    momentTaken = [](const Bytes &moment) {
        momentGiven = moment;
        keysAtMoment = keysTaken;
    };
    const RunReport report = runScripted(script, [&] {
        loadPrograms(file);
        scriptPort = keyPort;
        keyPort = countingPort;
        momentsFollow();
        if (askedAt != UINT64_MAX) momentAskAt(askedAt);
        if (from != nullptr) {
            EXPECT_EQ(momentResume(*from), MomentFault::none);
        }
        return true;
    });
    Course course{digests, machineDigest(), report.statements, report.ended, {}};
    if (wantsEnd) course.atEnd = momentOfEndedRun();
    debugForget();
    debugTrace = nullptr;
    momentTaken = nullptr;
    return course;
}

KeyRuns restOf(const KeyRuns &keys, std::size_t taken) {
    KeyRuns left;
    for (KeyReader reader(&keys); const auto key = reader.next();) {
        if (taken > 0)
            taken--;
        else
            left.emplace_back(*key);
    }
    return left;
}

RunScript rest(const RunScript &script, const KeysTaken &taken) {
    RunScript left = script;
    left.keys = restOf(script.keys, taken.waits);
    left.getKeys = restOf(script.getKeys, taken.getKeys);
    return left;
}

// From the moment on the run is the same, and its bytes read back are the same.
void expectGoesOn(const RunFile &file, const RunScript &script, const Bytes &bytes, const Course &straight) {
    Moment moment;
    ASSERT_EQ(momentFromBytes(bytes, moment), MomentFault::none);
    EXPECT_EQ(momentAsBytes(moment), bytes);
    const Course resumed = courseOf(file, script, &moment);
    EXPECT_EQ(resumed.digest, straight.digest);
    EXPECT_EQ(resumed.statements, straight.statements);
    EXPECT_EQ(resumed.ended, straight.ended);
    for (const auto &[statement, digest] : straight.digests) {
        if (statement < moment.statement + 2) continue;
        const auto found = resumed.digests.find(statement);
        ASSERT_NE(found, resumed.digests.end()) << "ahead of statement " << statement;
        ASSERT_EQ(found->second, digest) << "differs ahead of statement " << statement;
    }
}

struct Moments : testing::Test {
    static void SetUpTestSuite() {
        prepareRuns();
        languageLoad("English", "English");
    }
    RunClock clock;
    std::mt19937 chance{static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed())};
    std::uint64_t below(std::uint64_t limit) { return limit == 0 ? 0 : chance() % limit; }
};

// One file of so many, others with each seed, more of those that wait for keys; all of them where NUMALINK_ALL_RUNS is
// set.
constexpr std::size_t shareOfRuns = 25, shareOfWaits = 4;
constexpr int cutsOfEach = 2;

// Spread evenly, so that chance, which says where it begins, never takes too few.
struct Share {
    std::size_t of, next;
    bool takes() { return next++ % of == 0; }
};

RunFile fileOf(const std::string &program, const std::string &keys = "") {
    RunFile file;
    const std::size_t bar = program.find('|');
    file.sections = {{"program MAIN", {program.substr(0, bar)}}, {"keys", {keys}}};
    if (bar != program.npos) file.sections.push_back({"program SUB", {program.substr(bar + 1)}});
    return file;
}

Moment momentOf(const RunFile &file, std::uint64_t statement) {
    momentGiven.clear();
    courseOf(file, scriptOf(file), nullptr, statement);
    Moment moment;
    EXPECT_EQ(momentFromBytes(momentGiven, moment), MomentFault::none);
    return moment;
}

}  // namespace

TEST_F(Moments, ARunGoesOnFromAnyStatementAndAnyWait) {
    const bool takesAll = std::getenv("NUMALINK_ALL_RUNS") != nullptr;
    std::size_t atStatements = 0, inWaits = 0;
    Share ofRuns{shareOfRuns, below(shareOfRuns)}, ofWaits{shareOfWaits, below(shareOfWaits)};
    for (const std::string &name : runFiles(NUMALINK_RUNS_FOLDER)) {
        SCOPED_TRACE(name);
        const RunFile file = readRunFile(name);
        const RunScript script = scriptOf(file);
        if (!(script.keys.empty() ? ofRuns : ofWaits).takes() && !takesAll) continue;
        digestEvery = 1u << 20;
        digestEvery = 1 + courseOf(file, script).statements / 50;
        const Course straight = courseOf(file, script);
        for (int cut = 0; cut < cutsOfEach && straight.statements > 0; cut++) {
            momentGiven.clear();
            courseOf(file, script, nullptr, below(straight.statements));
            if (momentGiven.empty()) continue;
            atStatements++;
            expectGoesOn(file, rest(script, keysAtMoment), momentGiven, straight);
        }
        // The keys give out in a wait; the image that its moment is repeated from lies anywhere ahead of it.
        for (int cut = 0; cut < cutsOfEach && !script.keys.empty(); cut++) {
            RunScript cutOff = script;
            cutOff.keys.resize(below(script.keys.size()));
            imageAt = below(straight.statements);
            wantsEnd = true;
            const Course ended = courseOf(file, cutOff);
            const KeysTaken taken = keysTaken;
            imageAt = UINT64_MAX;
            wantsEnd = false;
            if (ended.atEnd.empty() || ended.ended == RunEnd::limit) continue;
            inWaits++;
            expectGoesOn(file, rest(script, taken), ended.atEnd, straight);
        }
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(atStatements, 10u);
    EXPECT_GT(inWaits, 10u);
    std::printf("%zu moments between statements, %zu in waits\n", atStatements, inWaits);
}

// What a moment holds has to fit together; what doesn't is neither written nor read.
struct Fault {
    const char *name;
    void (*make)(Moment &moment);
};
constexpr Fault faults[] = {
    {"arrays that overlap", [](Moment &moment) { moment.state.pool.table[1].firstCell--; }},
    {"a gap between arrays", [](Moment &moment) { moment.state.pool.cellsUsed++; }},
    {"an array larger than all",
     [](Moment &moment) {
         moment.state.pool.table[0] = {300, 300, 0, 1};
     }},
    {"two names of one array",
     [](Moment &moment) { moment.state.machine.matrixSlots[5] = moment.state.machine.matrixSlots[0]; }},
    {"a list of several columns",
     [](Moment &moment) {
         moment.state.machine.listSlots[0][3] = std::exchange(moment.state.machine.matrixSlots[0], nullptr);
     }},
    {"an array that is free", [](Moment &moment) { moment.state.machine.matrixSlots[7] = matrixRowAt(90); }},
    {"a row below the screen", [](Moment &moment) { moment.state.machine.textRow = 9; }},
    {"a list file beyond the last", [](Moment &moment) { moment.state.machine.currentFile = 6; }},
    {"base three", [](Moment &moment) { moment.state.machine.numberBase = 3; }},
    {"no such colour", [](Moment &moment) { moment.state.pictures[5].dots[8191] = 0x1000000; }},
    {"no variable to vary", [](Moment &moment) { moment.state.graphs.dynamicVariable = {0x3A}; }},
    {"a formula with a list in it",
     [](Moment &moment) { moment.state.graphs.functions[0].formula = {arrayCell(CellKind::list, matrixRowAt(0))}; }},
    {"no program in progress", [](Moment &moment) { moment.calls.clear(); }},
    {"a program that isn't there", [](Moment &moment) { moment.calls[1].program = 2; }},
    {"a way of years", [](Moment &moment) { moment.statement += 100'000'001; }},
    {"a moment ahead of its state", [](Moment &moment) { moment.statement--; }},
    {"a wait of years",
     [](Moment &moment) {
         moment.inputs.waits.push_back({72, 10'000'001});
     }},
    {"a wait that was given up",
     [](Moment &moment) {
         moment.inputs.waits.push_back({-1, 1});
     }},
};

constexpr char cutProgram[] = "{1,2}\\->\\List 1:[[1,2][3,4]]\\->\\Mat A:\\Prog \"SUB\":\"END\"|1\\->A:2\\->B";
constexpr std::uint64_t withinSub = 4;  // of its statements

TEST_F(Moments, WhatIsNotSoundIsRefused) {
    const RunFile file = fileOf(cutProgram);
    const Moment sound = momentOf(file, withinSub);
    ASSERT_EQ(sound.calls.size(), 2u);
    const Bytes bytes = *momentAsBytes(sound);
    for (const Fault &fault : faults) {
        Moment moment = sound;
        fault.make(moment);
        EXPECT_FALSE(momentAsBytes(moment)) << fault.name;
    }
    const auto read = [](const Bytes &changed) {
        Moment moment;
        return momentFromBytes(changed, moment);
    };
    const auto with = [&bytes](std::size_t at, int value) {
        Bytes changed = bytes;
        changed[at] = static_cast<std::uint8_t>(value);
        return changed;
    };
    EXPECT_EQ(read({}), MomentFault::foreign);
    EXPECT_EQ(read(with(0, 'X')), MomentFault::foreign);
    EXPECT_EQ(read(with(8, 2)), MomentFault::newer);
    EXPECT_EQ(read(with(8, 0)), MomentFault::damaged);
    EXPECT_EQ(read(with(15, 0x7F)), MomentFault::damaged) << "more than a moment may hold";
    EXPECT_EQ(read(with(16, bytes[16] ^ 1)), MomentFault::damaged);
    EXPECT_EQ(read(with(bytes.size() / 2, bytes[bytes.size() / 2] ^ 1)), MomentFault::damaged);
    EXPECT_EQ(read({bytes.begin(), bytes.end() - 1}), MomentFault::damaged);
    EXPECT_EQ(read(bytes), MomentFault::none);
}

// Each field alone changes the bytes: none is left out. What belongs together is changed in one line.
constexpr void (*changesOfFields[])(Moment &) = {
    [](Moment &of) { of.state.machine.variables[27] = complexMake(0, 1); },
    [](Moment &of) { of.state.machine.ans = complexReal(5); },
    [](Moment &of) { of.state.machine.window[8] = complexReal(5); },
    [](Moment &of) { of.state.machine.windowMemories[5][8] = complexReal(5); },
    [](Moment &of) { of.state.machine.matrixSlots[25] = std::exchange(of.state.machine.matrixSlots[0], nullptr); },
    [](Moment &of) { of.state.machine.listSlots[5][3] = std::exchange(of.state.machine.listSlots[0][0], nullptr); },
    [](Moment &of) { of.state.machine.errorFlag = !of.state.machine.errorFlag; },
    [](Moment &of) { of.state.machine.currentFile = 5; },
    [](Moment &of) { of.state.machine.backgroundPicture = 6; },
    [](Moment &of) { of.state.machine.plotPrevious.y = 5; },
    [](Moment &of) { of.state.machine.plotCurrent.x = 5; },
    [](Moment &of) { of.state.machine.textRow = 5; },
    [](Moment &of) { of.state.machine.textColumn = 5; },
    [](Moment &of) { of.state.machine.screenMode = matrixMode; },
    [](Moment &of) { of.state.machine.shortCopy = !of.state.machine.shortCopy; },
    [](Moment &of) { of.state.machine.rowColor[7] = pixelColor::green; },
    [](Moment &of) { of.state.machine.graphSwitches[5] = !of.state.machine.graphSwitches[5]; },
    [](Moment &of) { of.state.machine.gridSwitch = !of.state.machine.gridSwitch; },
    [](Moment &of) { of.state.machine.calculatorModes = !of.state.machine.calculatorModes; },
    [](Moment &of) { of.state.machine.angleUnit = AngleUnit::gradians; },
    [](Moment &of) { of.state.machine.format.form = NumberForm::scientific; },
    [](Moment &of) { of.state.machine.format.digits = 7; },
    [](Moment &of) { of.state.machine.format.lowestFixedExponent = -5; },
    [](Moment &of) { of.state.machine.format.engineering = true; },
    [](Moment &of) { of.state.machine.numberBase = 16; },
    [](Moment &of) { of.state.machine.namedValues[511] = complexReal(5); },
    [](Moment &of) { of.state.elements[0] = 5; },
    [](Moment &of) { of.state.statistics.curve = Regression{}; },
    [](Moment &of) { of.state.statistics.residualList = 5; },
    [](Moment &of) { of.state.statistics.graphs[2].isOn = !of.state.statistics.graphs[2].isOn; },
    [](Moment &of) { of.state.statistics.graphs[2].kind = StatGraphKind::regression; },
    [](Moment &of) { of.state.statistics.graphs[2].regression = RegressionKind::logistic; },
    [](Moment &of) { of.state.statistics.graphs[2].xList = 5; },
    [](Moment &of) { of.state.statistics.graphs[2].yList = 5; },
    [](Moment &of) { of.state.statistics.graphs[2].frequencies = 5; },
    [](Moment &of) { of.state.statistics.graphs[2].mark = StatMark::dot; },
    [](Moment &of) { of.state.statistics.graphs[2].color = pixelColor::green; },
    [](Moment &of) { of.state.statistics.fitsWindow = !of.state.statistics.fitsWindow; },
    [](Moment &of) { of.state.graphs.functions[19].type = GraphType::upTo; },
    [](Moment &of) { of.state.graphs.functions[19].formula = {numberCell(complexReal(5))}; },
    [](Moment &of) { of.state.graphs.functions[19].second = {numberCell(complexReal(5))}; },
    [](Moment &of) { of.state.graphs.functions[19].color = pixelColor::green; },
    [](Moment &of) { of.state.graphs.functions[19].style = LineStyle::dotted; },
    [](Moment &of) { of.state.graphs.functions[19].inGraph = !of.state.graphs.functions[19].inGraph; },
    [](Moment &of) { of.state.graphs.functions[19].inTable = !of.state.graphs.functions[19].inTable; },
    [](Moment &of) { of.state.graphs.functions[19].isDynamic = !of.state.graphs.functions[19].isDynamic; },
    [](Moment &of) { of.state.graphs.newType = GraphType::upTo; },
    [](Moment &of) { of.state.graphs.memories[5].functions[19].style = LineStyle::dotted; },
    [](Moment &of) { of.state.graphs.memories[5].window[8] = complexReal(5); },
    [](Moment &of) { of.state.graphs.plotsOnly = !of.state.graphs.plotsOnly; },
    [](Moment &of) { of.state.graphs.hidesAxes = !of.state.graphs.hidesAxes; },
    [](Moment &of) { of.state.graphs.showsGrid = !of.state.graphs.showsGrid; },
    [](Moment &of) { of.state.graphs.sketchStyle = LineStyle::dotted; },
    [](Moment &of) { of.state.graphs.sketchColor = pixelColor::green; },
    [](Moment &of) { of.state.graphs.dual = DualScreen::graphAndTable; },
    [](Moment &of) { of.state.graphs.listOfX = 5; },
    [](Moment &of) { of.state.graphs.tableResult = std::exchange(of.state.machine.matrixSlots[0], nullptr); },
    [](Moment &of) { of.state.graphs.recursionResult = std::exchange(of.state.machine.matrixSlots[0], nullptr); },
    [](Moment &of) { of.state.graphs.dynamicSpeed = DynamicSpeed::byKey; },
    [](Moment &of) { of.state.graphs.dynamicGoesOn = !of.state.graphs.dynamicGoesOn; },
    [](Moment &of) { of.state.graphs.keepsLocus = !of.state.graphs.keepsLocus; },
    [](Moment &of) { of.state.graphs.sequenceType = SequenceType::threeTerms; },
    [](Moment &of) { of.state.graphs.sequences[1].formula = {numberCell(complexReal(5))}; },
    [](Moment &of) { of.state.graphs.sequences[1].isSelected = !of.state.graphs.sequences[1].isSelected; },
    [](Moment &of) { of.state.graphs.showsSums = !of.state.graphs.showsSums; },
    [](Moment &of) { of.state.textRows[7][20] = 'x'; },
    [](Moment &of) { of.state.text.dots[8191] = 5; },
    [](Moment &of) { of.state.graph.dots[8191] = 5; },
    [](Moment &of) { of.state.matrices.dots[8191] = 5; },
    [](Moment &of) { of.state.display.dots[8191] = 5; },
    [](Moment &of) { of.state.pictures[5].dots[8191] = 5; },
    [](Moment &of) { of.state.workDone++; },
    [](Moment &of) { of.state.random++; },
    [](Moment &of) { of.calls[1].place.forContinuing = true; },
    [](Moment &of) { of.calls[1].place.left = numberCell(complexReal(5)); },
    [](Moment &of) { of.waitsAt = RunEnd::triangle; },
    [](Moment &of) { of.picture.dots[8191] = 5; },
    [](Moment &of) {
        of.inputs.getKeys.push_back({72, 1});
    },
};

TEST_F(Moments, NoFieldIsLeftOut) {
    Moment sound = momentOf(fileOf(cutProgram), withinSub);
    const Bytes bytes = *momentAsBytes(sound);
    int place = 0;
    for (void (*change)(Moment &) : changesOfFields) {
        Moment moment = sound;
        change(moment);
        const std::optional<Bytes> changed = momentAsBytes(moment);
        EXPECT_TRUE(changed && *changed != bytes) << "change " << place;
        place++;
        Moment read;
        EXPECT_EQ(momentFromBytes(changed.value_or(Bytes{}), read), MomentFault::none) << "change " << place - 1;
        EXPECT_EQ(momentAsBytes(read), changed);
    }
}

// A program changes, another one of the folder, or what a moment tells of the programs.
TEST_F(Moments, AMomentGoesWithItsPrograms) {
    const Moment sound = momentOf(fileOf(cutProgram), withinSub);
    const auto resumed = [](const RunFile &file, const Moment &moment) {
        freshMachine(file);
        loadPrograms(file);
        momentsFollow();
        const MomentFault fault = momentResume(moment);
        debugForget();
        return fault;
    };
    RunFile more = fileOf(cutProgram);
    more.sections.insert(more.sections.begin() + 1, {"program OTHER", {"9\\->Z"}});
    EXPECT_EQ(resumed(more, sound), MomentFault::none);
    RunFile withFunction = more;
    withFunction.sections.insert(withFunction.sections.begin() + 1, {"program f1", {"X"}});
    EXPECT_EQ(resumed(withFunction, sound), MomentFault::changed);
    const std::string whole = cutProgram;
    for (const std::string &changed : {whole + "0", "0" + whole, whole.substr(0, whole.find('|'))})
        EXPECT_EQ(resumed(fileOf(changed), sound), MomentFault::changed) << changed;
    Moment elsewhere = sound;
    elsewhere.calls[1].place.position = 8;
    EXPECT_EQ(resumed(more, elsewhere), MomentFault::damaged) << "behind the end of its program";
    Moment behindCall = sound;
    behindCall.calls[0].place.statementLength--;
    EXPECT_EQ(resumed(more, behindCall), MomentFault::damaged);
    Moment ofNoText = sound;
    ofNoText.calls[1].place.left.kind = CellKind::string;
    EXPECT_EQ(resumed(more, ofNoText), MomentFault::damaged);
}

}  // namespace numalink
