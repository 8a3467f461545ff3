// Runs that are stopped, stepped through and gone back in: whatever way a run is taken through, it is the same run.
#include <map>

#include "debugger/breakpoint_file.h"
#include "debugger/breakpoints.h"
#include "debugger/debugged_runs.h"
#include "debugger/following.h"
#include "debugger/profile.h"
#include "debugger/values.h"
#include "debugger/watches.h"
#include "emulator/expressions.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/programs.h"
#include "emulator/run/machine_start.h"
#include "platform/clock.h"
#include "support/scratch_folder.h"

namespace numalink {

namespace {

// Commands that are given at one stop after the other, and the stops as they come: LINE.STATEMENT@STATEMENTS-OVER, and
// what else is told. The run goes on to its end then.
struct Script {
    const char *name, *program;  // MAIN, and SUB behind a bar
    const char *breaks;          // LINE.STATEMENT, ?condition or *count behind it; =TARGET
    const char *commands, *stops;
};
constexpr Script scripts[] = {
    {"steps", "\\Prog \"SUB\":3\\->C|1\\->A:2\\->B", "", "in in in in", "1.0@0 1.0@1 1.1@2 1.1@3 1.1@3+end"},
    {"over, out and back over", "\\Prog \"SUB\":3\\->C|1\\->A:2\\->B", "", "in out back-over over",
     "1.0@0 1.0@1 1.1@3 1.0@0 1.1@3 1.1@3+end"},
    {"lines", "1\\->A:2\\->B\r\nA+B\\->C:C\\->D", "", "line line", "1.0@0 2.0@2 2.1@3+end"},
    {"breakpoints", "\\For 1\\->I\\To 3:A+I\\->A:\\Next:A\\->B", "1.1", "on on back-break back-break back-break",
     "1.0@0 1.1@1 1.1@4 1.1@1 1.0@0+start 1.0@0+start 1.1@1 1.1@4 1.1@7 1.3@10+end"},
    {"a condition", "\\For 1\\->I\\To 3:A+I\\->A:\\Next:A\\->B", "1.1?I=3", "on on", "1.0@0 1.1@7 1.3@10+end"},
    {"a condition that reports", "1\\->A:2\\->A", "1.1?Mat B", "on", "1.0@0 1.1@1+Dim ERROR 1.1@1+end"},
    {"a count", "\\For 1\\->I\\To 4:A+I\\->A:\\Next", "1.1*3", "on on on", "1.0@0 1.1@7 1.1@10 1.2@12+end"},
    {"a count on a way gone once more", "\\For 1\\->I\\To 4:A+I\\->A:\\Next", "1.1*3",
     "on back-break back-break on on on", "1.0@0 1.1@7 1.1@4 1.1@1 1.1@7 1.1@10 1.2@12+end"},
    {"hits as far as the run stands", "\\For 1\\->I\\To 4:A+I\\->A:\\Next", "1.1",
     "on on on H back-break H back-break H on H",
     "1.0@0 1.1@1 1.1@4 1.1@7+H=3 1.1@4+H=2 1.1@1+H=1 1.1@4+H=2 1.1@7 1.1@10 1.2@12+end"},
    {"behind a label", "\\Lbl 1:A+1\\->A:A<3\\=>\\Goto1:9\\->B", "1.0", "on on on on",
     "1.0@0 1.1@1 1.1@4 1.1@7 1.3@9+end"},
    {"a variable that changes", "1\\->A:2\\->B:1\\->A:5\\->A", "=A", "on on on",
     "1.0@0 1.1@1+A: 0 -> 1 1.3@3+end+A: 1 -> 5"},
    {"a dot that changes", "\\PxlOn 5,6:\\PxlOn 7,8:\\Cls", "=dot 7,8", "on on on",
     "1.0@0 1.2@2+dot 7,8: 0 -> 1 1.2@2+end+dot 7,8: 1 -> 0"},
    {"the first error", "1\\->A:\\Lbl :B+\\->A:2\\->C", "errors", "on in", "1.0@0 1.2@2+Syn ERROR 1.3@3 1.3@3+end"},
    {"a change amid a statement", "1\\->A:\\Lbl :B+\\->A:2\\->C:3\\->D:4\\->E", "errors", "on A=5 in in in A back A",
     "1.0@0 1.2@2+Syn ERROR 1.3@3 1.4@4 1.5@5+A=5 1.4@4+A=5 1.5@5+end"},
    {"the first error, met again", "1\\->A:\\Lbl :B+\\->A:B+\\->A", "errors", "on back in in in",
     "1.0@0 1.2@2+Syn ERROR 1.2@2 1.2@2+Syn ERROR 1.3@3 1.3@3+end"},
    {"back to a change", "1\\->A:2\\->B:3\\->A:4\\->B:5\\->C", "", "to@4 change-A change-A change-A",
     "1.0@0 1.4@4 1.2@2 1.0@0 1.0@0+start 1.4@4+end"},
};

std::vector<std::string> commandsLeft;
std::string stopsTold;

void obeyScript() {
    const DebugStop stop = debugStop();
    stopsTold += (stopsTold.empty() ? "" : " ") + std::to_string(stop.place.line) + "." +
                 std::to_string(stop.place.statement) + "@" + std::to_string(stop.statement);
    if (stop.isAtEnd) stopsTold += "+end";
    if (stop.reason == StopReason::backAtStart) stopsTold += "+start";
    if (!stop.detail.empty()) stopsTold += "+" + stop.detail;
    const auto nextCommand = [] {
        const std::string command = commandsLeft.empty() ? "on" : commandsLeft.front();
        if (!commandsLeft.empty()) commandsLeft.erase(commandsLeft.begin());
        return command;
    };
    std::string command = nextCommand();
    for (; command.starts_with("A") || command == "H"; command = nextCommand()) {  // its value is told, or set; hits
        if (command == "H") stopsTold += "+H=" + std::to_string(breakpoints().at(0).hits);
        if (command == "H") continue;
        if (command == "A") stopsTold += "+A=" + valueTextOf(machine.variables[0]).plain;
        if (command == "A") continue;
        EXPECT_EQ(debugChange(*debugTargetNamed("A"), command.substr(2)), DebugChange::done);
    }
    const std::string operand = command.substr(std::min(command.size(), command.find_first_of("-@") + 1));
    bool given = false;
    if (command == "in") given = debugStep(DebugStep::statement);
    if (command == "over") given = debugStep(DebugStep::over);
    if (command == "out") given = debugStep(DebugStep::out);
    if (command == "line") given = debugStep(DebugStep::line);
    if (command == "back") given = debugBack(DebugBack::statement);
    if (command == "back-over") given = debugBack(DebugBack::over);
    if (command == "back-break") given = debugBack(DebugBack::breakpoint);
    if (command.starts_with("change-")) given = debugBack(DebugBack::change, operand);
    if (command.starts_with("to@")) given = debugRunTo(placeOfCell(0, statementCells(0)[std::stoul(operand)]));
    if (!given) debugStep(DebugStep::onward);
}

void setBreaks(const std::string &breaks) {
    breakpointsClear();
    if (breaks.empty() || breaks == "errors") return;
    Breakpoint breakpoint;
    breakpoint.program = "MAIN";
    const std::size_t behind = std::min(breaks.find_first_of("?*"), breaks.size());
    if (breaks[0] == '=') {
        breakpoint.target = breaks.substr(1);
    } else {
        breakpoint.line = breaks[0] - '0';
        breakpoint.statement = breaks[2] - '0';
    }
    if (behind < breaks.size() && breaks[behind] == '?') breakpoint.condition = breaks.substr(behind + 1);
    if (behind < breaks.size() && breaks[behind] == '*') breakpoint.count = std::stoull(breaks.substr(behind + 1));
    ASSERT_NE(breakpointAdd(breakpoint), 0) << breaks;
}

}  // namespace

TEST_F(Debugged, SteppedStatementByStatementARunEndsAsItDoesByItself) {
    onStop = [] { debugStep(DebugStep::statement); };
    const DebugOptions options{.stopAtEntry = true};
    withSomeFiles([&](const RunFile &file) { EXPECT_EQ(runWith(file, &options), runWith(file, nullptr)); });
}

TEST_F(Debugged, StopsWhereItIsTold) {
    onStop = obeyScript;
    for (const Script &script : scripts) {
        SCOPED_TRACE(script.name);
        setBreaks(script.breaks);
        DebugOptions options{.stopAtEntry = true, .stopAtEnd = true, .records = true};
        if (std::string(script.breaks) == "errors") options.errors = ErrorStops::first;
        commandsLeft = wordsOf(script.commands);
        stopsTold.clear();
        runWith(fileWith(script.program), &options);
        EXPECT_EQ(stopsTold, script.stops);
    }
    breakpointsClear();
}

// At the calculators' pace: 50 calls that return one by one, each with a wait of its caller; a long expression.
int sleepsUntilPause = 0, sleepsSincePause = 0;
TEST_F(Debugged, APauseStopsAmidLongWork) {
    constexpr const char *programs[] = {
        "\\Prog \"SUB\"|A+1\\->A:A<50\\=>\\Prog \"SUB\":7\\->B",
        "50\\->A:\\Seq(X,X,1,200,1)\\->\\List 1:7\\->B",
    };
    for (const char *program : programs) {
        SCOPED_TRACE(program);
        static std::vector<DebugStop> stops;
        stops.clear();
        sleepsUntilPause = 20;
        sleepsSincePause = 0;
        clockPort.sleepMilliseconds = [](std::uint64_t) {
            const bool isLong = machine.variables[0].re >= 50;
            if (isLong && --sleepsUntilPause == 0) debugPause();
            if (stops.empty() && sleepsUntilPause <= 0) sleepsSincePause++;
        };
        onStop = [] {
            stops.push_back(debugStop());
            debugStep(DebugStep::onward);
        };
        RunFile file = fileWith(program);
        file.sections.push_back({"set FullSpeed 0", {}});
        const DebugOptions options{.records = true};
        const Ending ending = runWith(file, &options);
        ASSERT_EQ(stops.size(), 1u);
        EXPECT_EQ(stops[0].reason, StopReason::pause);
        // Between the returns a slow machine also paces statements, ahead of which it may stop as well.
        if (program == programs[1]) {
            EXPECT_TRUE(stops[0].isWithin);
        }
        EXPECT_LE(sleepsSincePause, 2);
        EXPECT_EQ(ending.ended, RunEnd::end) << "it goes on from there";
        EXPECT_EQ(machine.variables[1].re, 7);
    }
}

TEST_F(Debugged, ConditionsAreLookedAtWhenTheyAreSet) {
    freshMachine(fileWith("1\\->A"));
    for (const char *good : {"A=5", "List 1[3]>2", "1/(A-A)", "Getkey", "A And B"})
        EXPECT_EQ(conditionFault(good), "") << good;
    for (const char *bad : {"A=", "1=", "\"T\"", "A B C D)", "?", "{1,2}"}) {
        EXPECT_NE(conditionFault(bad), "") << bad;
        Breakpoint point;
        point.line = 1;
        point.condition = bad;
        EXPECT_EQ(breakpointAdd(point), 0) << bad;
    }
}

// What the panes show in full is read back to the same bits.
TEST_F(Debugged, ValuesInFullReadBack) {
    struct Written {
        double value;
        const char *plain, *full;
    };
    constexpr Written written[] = {{1e6, "1000000", "1000000"},
                                   {-0.1, "-0.1", "\u207B0.1"},
                                   {1.0 / 3, "0.3333333333333333", "0.3333333333333333"},
                                   {-2.5e-20, "-2.5E-20", "\u207B2.5\u1D07\u207B20"},
                                   {12345678901234567e4, "1.2345678901234567E+20", "1.2345678901234567\u1D07\uFF0B20"}};
    for (const auto &[value, plain, full] : written) {
        const ValueText text = elementTextOf(value);
        EXPECT_EQ(text.plain, plain);
        EXPECT_EQ(text.full, full);
        for (const std::string &typed : {text.plain, text.full}) {
            ASSERT_EQ(targetSet(*debugTargetNamed("A"), typed), DebugChange::done) << typed;
            EXPECT_EQ(machine.variables[0].re, value) << typed;
        }
    }
    machine.variables[0] = {};
}

// Formulas, pictures and the dots of whichever screen is up.
TEST_F(Debugged, TellsWhatIsStoredAndDrawn) {
    static std::string told;
    told.clear();
    onStop = [] {
        const auto tell = [](const std::string &text) { told += text + "|"; };
        for (const NamedText &formula : debugFormulas()) tell(formula.name + formula.text);
        for (const NamedPicture &picture : debugPictures()) tell(picture.name + " " + std::to_string(picture.dots));
        const DebugTarget dot = *debugTargetNamed("dot 100,40");
        tell(std::to_string(static_cast<int>(debugTargetValue(dot)->re)));
        tell(targetSet(dot, "1") == DebugChange::done ? "set" : "can't");
        tell(std::to_string(static_cast<int>(debugTargetValue(dot)->re)));
        debugStep(DebugStep::statement);
    };
    breakpointsClear();
    const DebugOptions options{.stopAtEntry = true};
    runWith(fileWith("\\PxlOn 100,40:\\StoPict 2:\\Locate 1,1,\"III\":\"2X+1\"\\->\\Y 1"), &options);
    EXPECT_EQ(told, "0|can't|0|1|set|1|Pict 2 1|1|set|1|Pict 2 1|0|can't|0|Y1=2X\uFF0B1|Pict 2 1|0|can't|0|");
}

// Lists of another file are told from those of the current one, and places of a profile are those of the text.
TEST_F(Debugged, NamesListsByTheirFilesAndCountsByTheirPlaces) {
    static std::string told;
    told.clear();
    onStop = [] {
        if (!debugStop().isAtEnd) return void(debugStep(DebugStep::onward));
        for (const NamedArray &array : debugArrays())
            if (array.rows <= 2) told += array.name + " " + std::to_string(array.rows) + "|";
        for (const ProfileRow &row : profileReport().rows)
            told += std::to_string(row.place.line) + "." + std::to_string(row.place.statement) + "*" +
                    std::to_string(row.count) + "|";
        debugStep(DebugStep::onward);
    };
    profileStart();
    const DebugOptions options{.stopAtEnd = true};
    runWith(fileWith("{1,2}\\->\\List 1:\\File2\r\n{3}\\->\\List 2:0=1\\=>1\\->A:2\\->B\r\n3\\->C"), &options);
    profileStop();
    EXPECT_EQ(told, "List 2 1|File 1 List 1 2|1.0*1|1.1*1|2.0*1|2.1*1|2.2*1|3.0*1|");
}

TEST_F(Debugged, AProfileCountsEveryStatementOnce) {
    withSomeFiles([](const RunFile &file) {
        onStop = [] { debugStep(DebugStep::onward); };
        profileStart();
        static ProfileReport report;
        const RecordedUi recorded;
        freshMachine(file);
        const RunReport run = runScripted(scriptOf(file), [&] {
            loadPrograms(file);
            debugBegin({});
            return true;
        });
        report = profileReport();
        std::uint64_t sum = 0, units = 0;
        for (const ProfileRow &row : report.rows) {
            sum += row.count;
            units += row.paceUnits;
        }
        EXPECT_EQ(sum, run.statements);
        EXPECT_EQ(report.count, sum);
        EXPECT_EQ(report.paceUnits, units);
        EXPECT_GE(units, sum * 5 / 2);
        profileStop();
        debugForget();
    });
}

// At each stop as many are counted as are over, also on the way back and in what is gone through once more.
TEST_F(Debugged, AProfileCountsWhatHasRun) {
    static std::string told;
    static std::vector<std::string> steps;
    told.clear();
    steps = {"in", "in", "back", "in", "in", "here", "in"};
    onStop = [] {
        told += std::to_string(debugStop().statement) + "=" + std::to_string(profileReport().count) + " ";
        const std::string step = steps.empty() ? "on" : steps.front();
        if (!steps.empty()) steps.erase(steps.begin());
        if (step == "back") debugBack(DebugBack::statement);
        if (step == "here") debugGoTo(debugStop().statement);
        if (step == "in") debugStep(DebugStep::statement);
        if (step == "on") debugStep(DebugStep::onward);
    };
    profileStart();
    const DebugOptions options{.stopAtEntry = true, .records = true};
    runWith(fileWith("1\\->A:2\\->A:3\\->A:4\\->A:5\\->A"), &options);
    profileStop();
    EXPECT_EQ(told, "0=0 1=1 2=2 1=2 2=2 3=3 3=3 4=4 ");
}

TEST_F(Debugged, WatchesLeaveNoTrace) {
    static std::string told;
    told.clear();
    onStop = [] {
        const std::uint64_t before = machineDigest();
        const int cells = poolCellsUsed();
        for (const char *expression : {"A+1", "Ran#", "1/", "?", "\"T\"", "List 1", "Seq(X^2,X,1,3,1)", "Mat B", "A->B",
                                       "", "Getkey", "A>2 And 1"})
            told += watchText(evaluateWatch(readWatch(expression))).full + "|";
        if (machineDigest() != before || poolCellsUsed() != cells) told += "changed";
        debugStep(DebugStep::onward);
    };
    const DebugOptions options{.stopAtEnd = true};
    runWith(fileWith("5\\->A:Ran#\\->R:{1,2,3}\\->\\List 1:7\\->X"), &options);
    EXPECT_EQ(told,
              "6|0.5138706625568408|Syn ERROR|takes too long, or waits|T|{1, 2, 3}|{1, 4, 9}|Dim ERROR|Syn ERROR|is "
              "empty|0|1|");
}

// A breakpoint at the statement marked *, the program after an edit, and where it is then; "lost" else.
struct Edit {
    const char *name, *before, *after, *place;
};
constexpr Edit edits[] = {
    {"a line ahead", "1\\->A|2\\->B*|3\\->C", "0\\->Z|1\\->A|2\\->B|3\\->C", "3.0"},
    {"statements ahead in its line", "1\\->A|2\\->B*|3\\->C", "1\\->A|9\\->D:8\\->E:2\\->B|3\\->C", "2.2"},
    {"edited itself", "1\\->A|2\\->B*|3\\->C", "1\\->A|2.5\\->B|3\\->C", "2.0"},
    {"deleted", "1\\->A|2\\->B*|3\\->C", "1\\->A|3\\->C", "lost"},
    {"moved", "1\\->A|2\\->B*|3\\->C", "1\\->A|3\\->C|4\\->D|2\\->B", "4.0"},
    {"one of many alike", "\\Next|\\Next|1\\->A|\\Next*|2\\->A", "\\Next|0\\->B|\\Next|1\\->A|\\Next|2\\->A", "5.0"},
    {"a colon in a text", "\"A:B\":1\\->A*", "1\\->B:\"A:B\":1\\->A", "1.2"},
};

Bytes imageOfLines(std::string lines) {
    std::erase(lines, '*');
    for (std::size_t at = lines.find('|'); at != lines.npos; at = lines.find('|', at)) lines.replace(at, 1, "\r\n");
    return imageOfWords(lines);
}

TEST_F(Debugged, BreakpointsFollowEditsAndRestarts) {
    const ScratchFolder scratch;
    constexpr ItemId item = 77;
    for (const Edit &edit : edits) {
        SCOPED_TRACE(edit.name);
        breakpointsClear();
        int line = 1, statement = 0;
        bool quoted = false;
        for (const char *c = edit.before; *c != '*'; c++) {
            if (*c == '"') quoted = !quoted;
            if (*c == ':' && !quoted) statement++;
            if (*c != '|') continue;
            line++;
            statement = 0;
        }
        breakpointToggle(item, line, statement);
        breakpointsFollow(item, imageOfLines(edit.before));
        ASSERT_TRUE(breakpointsSave(scratch.path));
        breakpointsClear();
        ASSERT_TRUE(breakpointsLoad(scratch.path));
        breakpointsFollow(item, imageOfLines(edit.after));
        const std::vector<Breakpoint> found = breakpointsOfItem(item);
        ASSERT_EQ(found.size(), 1u);
        const std::string place = std::to_string(found[0].line) + "." + std::to_string(found[0].statement);
        EXPECT_EQ(found[0].isLost ? "lost" : place, edit.place);
    }
    // As it stands in a text that was edited while the run has the other one, and back.
    programsClear();
    programAdd("MAIN", imageOfLines("1\\->A|2\\->B:3\\->C"));
    const Bytes edited = imageOfLines("0\\->Z|1\\->A|9\\->D:2\\->B:3\\->C");
    const DebugPlace inRun{.program = 0, .line = 2, .statement = 1};
    const std::optional<DebugPlace> inText = placeInText(inRun, edited);
    ASSERT_TRUE(inText);
    EXPECT_EQ(std::pair(inText->line, inText->statement), std::pair(3, 2));
    EXPECT_EQ(placeInRun(*inText, edited), inRun);
    scratch.write(breakpointFileName, R"([{"item":5,"line":2,"condition":"A="}])");
    EXPECT_TRUE(breakpointsLoad(scratch.path));
    EXPECT_EQ(breakpoints().size(), 1u) << "what is wrong with it is told where it is met";
    for (const char *hostile : {"", "{", "[1,{},{\"item\":-1,\"line\":1e99},{\"changes\":7}]", "[[[[[["}) {
        scratch.write(breakpointFileName, hostile);
        breakpointsLoad(scratch.path);
        EXPECT_TRUE(breakpoints().empty()) << hostile;
    }
}

}  // namespace numalink
