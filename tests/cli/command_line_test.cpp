// The command line from arguments to output, on libraries of its own: the sessions of tests/cli/sessions, and a library
// that is checked.
//
//   file games.cat                begins a file of the scratch folder
//   |A line of it|another         each with CR LF behind it
//   < BYTES                       those of support/byte_text.h
//   $ show LIB '/Programs/AB C'   a command in the scratch folder; LIB is the library, ~' a quote inside of quotes
//   status 2                      0 unless told
//   > a line                      all that it writes, line for line; or
//   has a text                    somewhere in it
//   ! a text                      how a line of its errors begins; there are no others
//   holds out.cat |a line         in that file, afterwards
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iomanip>
#include <thread>

#include "cli/commands.h"
#include "platform/file_port.h"
#include "support/byte_text.h"
#include "support/cat_records.h"
#include "support/scratch_folder.h"
#include "telling/user_interface.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

Outcome run(std::vector<std::string> arguments) {
    ::setenv("LC_ALL", "C.UTF-8", 1);  // English, whoever runs it
    std::vector<const char *> argv = {"numalink-cli"};
    for (const std::string &argument : arguments) argv.push_back(argument.c_str());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(argv.size()), argv.data());
    std::fflush(stdout);
    Outcome outcome{status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
    userInterface = userInterfaceSilent;
    return outcome;
}

// With the scratch folder as the folder it is called in.
struct CallFolder {
    CallFolder() { std::filesystem::current_path(scratch.path); }
    ~CallFolder() { std::filesystem::current_path("/"); }

    ScratchFolder scratch;
};

// A command, and what is told of it.
struct Step {
    std::string command, status = "0", out = "";
    std::vector<std::string> parts = {}, errors = {}, held = {};
};

void expectStep(const ScratchFolder &scratch, const Step &step) {
    SCOPED_TRACE(step.command);
    std::istringstream words(step.command);
    std::vector<std::string> arguments;
    for (std::string word; words >> std::quoted(word, '\'', '~');)
        arguments.push_back(word == "LIB" ? "library/new" : word);
    const Outcome found = run(arguments);
    EXPECT_EQ(std::to_string(found.status), step.status);
    EXPECT_TRUE(step.out.empty() || found.out == step.out) << found.out;
    for (const std::string &part : step.parts) EXPECT_THAT(found.out, HasSubstr(part));
    std::istringstream told(found.err);
    std::string line;
    for (const std::string &start : step.errors) {
        std::getline(told, line);
        EXPECT_THAT(line, StartsWith(start));
    }
    EXPECT_FALSE(std::getline(told, line)) << line;
    for (const std::string &held : step.held) {
        const std::size_t blank = held.find(' ');
        const Bytes part = parseFileLine(held.substr(blank + 1));
        EXPECT_THAT(scratch.read(held.substr(0, blank)), HasSubstr(std::string(part.begin(), part.end())));
    }
}

void playSession(const ScratchFolder &scratch, const std::filesystem::path &path) {
    std::ifstream session(path);
    std::ofstream file;
    std::vector<Step> steps;
    for (std::string line; std::getline(session, line);) {
        const std::string word = line.substr(0, line.find(' '));
        const std::string rest = line.substr(std::min(word.size() + 1, line.size()));
        if (word == "file") {
            file = std::ofstream(scratch.path + rest, std::ios::binary);
        } else if (word == "$") {
            steps.push_back({rest});
        } else if (word == ">") {
            steps.back().out += rest + "\n";
        } else if (word == "status") {
            steps.back().status = rest;
        } else if (word == "has" || word == "!" || word == "holds") {
            (word == "has" ? steps.back().parts
             : word == "!" ? steps.back().errors
                           : steps.back().held)
                .push_back(rest);
        } else if (word == "<" || line.starts_with('|')) {
            for (const std::uint8_t byte : parseFileLine(line)) file.put(static_cast<char>(byte));
        }
    }
    file.close();
    EXPECT_FALSE(steps.empty());
    for (const Step &step : steps) expectStep(scratch, step);
}

TEST(Sessions, GoAsTheyTell) {
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_SESSIONS)) {
        SCOPED_TRACE(entry.path().filename());
        const CallFolder folder;
        playSession(folder.scratch, entry.path());
        count++;
    }
    EXPECT_GE(count, 5);
}

// Programs of the library, as lint tells their places: each has one problem.
std::vector<std::string> programsOf(const std::string &library) {
    std::istringstream told(run({"lint", library}).out);
    std::vector<std::string> paths;
    for (std::string line; std::getline(told, line);) paths.push_back(line.substr(0, line.find(':')));
    return paths;
}

struct TextFolder : testing::Test {
    TextFolder() {
        const auto program = [](const char *name) { return catProgram(name, "\\Goto1"); };
        folder.scratch.write("a.cat", program("ONE") + program("TWO") + program("A.fm"));
        EXPECT_EQ(run({"import", "lib", "a.cat", "--into", "games"}).status, 0);
        EXPECT_EQ(run({"export", "lib", "--text", "texts"}).status, 0);
    }
    static Outcome import() { return run({"import", "lib", "--text", "texts"}); }
    static Outcome exportAgain() { return run({"export", "lib", "--text", "texts"}); }

    CallFolder folder;
    std::vector<std::string> all = {"/games/ONE", "/games/TWO", "/games/A.fm"};
    std::string index = "texts/.numalink-texts.json";
};

TEST_F(TextFolder, OnlyATextThatHasGoneTakesItsProgramAlong) {
    namespace fs = std::filesystem;
    fs::rename("texts/games", "elsewhere");
    fs::create_directory_symlink("../elsewhere", "texts/games");
    EXPECT_EQ(import().status, 1);
    EXPECT_EQ(programsOf("lib"), all);
    fs::remove("elsewhere/ONE.txt");
    EXPECT_EQ(exportAgain().status, 1);
    EXPECT_FALSE(fs::exists("elsewhere/ONE.txt")) << "nothing is written behind a link";
    fs::remove("texts/games");
    fs::rename("elsewhere", "texts/games");
    fs::create_directory("texts/games/ONE.txt");
    fs::resize_file("texts/games/TWO.txt", 17 << 20);
    const Outcome unread = import();
    EXPECT_EQ(unread.status, 2);
    EXPECT_THAT(unread.err, HasSubstr("games/ONE.txt: can't be read"));
    EXPECT_THAT(unread.err, HasSubstr("games/TWO.txt: can't be read"));
    EXPECT_EQ(programsOf("lib"), all);
    EXPECT_THAT(exportAgain().err, HasSubstr("games/TWO.txt: can't be read"));
    fs::remove("texts/games/ONE.txt");
    EXPECT_EQ(import().status, 2);
    EXPECT_EQ(programsOf("lib"), (std::vector<std::string>{"/games/TWO", "/games/A.fm"}));
}

TEST_F(TextFolder, WhatCouldNotBeWrittenIsNoLessInStepThanBefore) {
    namespace fs = std::filesystem;
    fs::rename("texts/games", "elsewhere");
    folder.scratch.write("texts/games", "");
    EXPECT_EQ(exportAgain().status, 2);
    fs::remove("texts/games");
    fs::rename("elsewhere", "texts/games");
    folder.scratch.write("new.txt", "Goto 5\n");
    EXPECT_EQ(run({"write", "lib", "/games/ONE", "new.txt"}).status, 0);
    EXPECT_EQ(exportAgain().status, 0);
    EXPECT_EQ(folder.scratch.read("texts/games/ONE.txt"), "Goto 5\n");
}

TEST_F(TextFolder, WithoutAnIndexWhatIsTheSameIsTakenForTheLibrarysOwn) {
    namespace fs = std::filesystem;
    const std::string before = folder.scratch.read(index);
    EXPECT_EQ(exportAgain().status, 0);
    EXPECT_EQ(folder.scratch.read(index), before) << "a program's name may end as a function memory's text does";
    for (const char *damaged : {"", "[]", R"({"version":"1","items":[]})", R"({"version":1,"items":5})",
                                R"({"version":1,"items":[{"file":"../a.txt","item":"/a","head":"","data":"0"}]})"}) {
        folder.scratch.write(index, damaged);
        for (const Outcome &outcome : {import(), exportAgain()}) {
            EXPECT_EQ(outcome.status, 2) << damaged;
            EXPECT_THAT(outcome.err, HasSubstr("the folder is left alone"));
        }
        EXPECT_EQ(folder.scratch.read(index), damaged);
    }
    fs::remove(index);
    folder.scratch.write("texts/games/TWO.txt", "Goto 2\n");
    const Outcome fresh = import();
    EXPECT_EQ(fresh.status, 1);
    EXPECT_THAT(fresh.err, HasSubstr("games/TWO.txt: is new here"));
    EXPECT_EQ(programsOf("lib"), all);
    folder.scratch.write("texts/games/ONE.txt", "Goto 3\n");
    EXPECT_EQ(import().status, 1);
    EXPECT_EQ(run({"show", "lib", "/games/ONE"}).out, "Goto 3\n") << "from then on it is in step";
    EXPECT_EQ(run({"show", "lib", "/games/TWO"}).out, "Goto 1\n");
}

// What the commands on standard input do while a calculator sends.
Outcome runLink(const std::string &port, const std::function<void()> &ahead, const std::string &commands) {
    int input[2] = {-1, -1};
    EXPECT_EQ(pipe2(input, O_CLOEXEC), 0);
    const int before = dup(STDIN_FILENO);
    EXPECT_EQ(dup2(input[0], STDIN_FILENO), STDIN_FILENO);
    std::thread other([&] {
        ahead();
        EXPECT_EQ(write(input[1], commands.data(), commands.size()), std::ssize(commands));
    });
    const Outcome outcome =
        run({"link", "library/new", "--port", port, "--type", "cfx", "--answer", "yes", "--seconds", "60"});
    other.join();
    EXPECT_EQ(dup2(before, STDIN_FILENO), STDIN_FILENO);
    for (const int end : {before, input[0], input[1]}) close(end);
    return outcome;
}

TEST(CommandLine, LinkTakesBackWhatACalculatorHasReplaced) {
    const CallFolder folder;
    folder.scratch.write("games.cat", catProgram("SNAKE"));
    ASSERT_EQ(run({"import", "library/new", "games.cat"}).status, 0);
    const std::string shown = run({"show", "library/new", "/Programs/SNAKE"}).out;
    const PseudoTerminal terminal;
    const auto send = [&] {
        bool sent = false;
        while (!sent) {  // its first byte is lost on a port that isn't open yet
            calculator::Calculator sender;
            calculator::Moving moving{.patience = 1000};
            sender.toSend.push_back(calculator::program("SNAKE", {'B', 'C', 'D'}));
            startSending(sender);
            sent = moveCalculator(sender, terminal.master, moving) && sender.closed;
        }
    };
    const Outcome undone = runLink(terminal.path, send, "undo\nundo\nquit\n");
    EXPECT_THAT(undone.out, HasSubstr("undone SNAKE, items: 1"));
    EXPECT_EQ(undone.status, 2);
    EXPECT_THAT(undone.err, HasSubstr("There is nothing to undo"));
    EXPECT_EQ(run({"show", "library/new", "/Programs/SNAKE"}).out, shown);
}

int writesLeft = 0;

TEST(CommandLine, CheckTellsOfALibraryAndRepairsIt) {
    const CallFolder folder;
    const ScratchFolder &scratch = folder.scratch;
    scratch.write("games.cat", catProgram("SNAKE") + catProgram("TETRIS"));
    ASSERT_EQ(run({"import", "library/new", "games.cat"}).status, 0);
    const std::string name = "library/new/storage.dat", sound = "places with damage: 0\n";
    const std::string copy = "library/new/backups/storage-2026-01-02.dat", restored = " is in the place of the library";
    std::filesystem::create_directory(scratch.path + "library/new/backups");
    using Words = std::vector<std::string>;
    const Words check = {"check"}, repair = {"check", "--repair"}, restore = {"check", "--restore"}, list = {"list"};
    enum class Before { none, damage, hold, remove, empty, headless, lineEnd };
    struct Row {
        Before before;
        Words command;
        int writes, status;
        std::string tells;
        bool changes = false;
    };
    const Row rows[] = {
        {Before::none, check, 99, 0, sound},
        {Before::none, repair, 99, 0, sound},
        {Before::damage, check, 99, 1, "lost: at 8032, id "},
        {Before::none, repair, 0, 2, "could not be put in order"},
        {Before::none, repair, 1, 2, "could not be put in order"},  // once its copy is written
        {Before::none, repair, 99, 1, "repaired; the damaged file is kept", true},
        {Before::none, check, 99, 0, sound},
        {Before::none, restore, 99, 2, "holds no copy in order"},
        {Before::empty, check, 99, 2, "copies of it lie in"},
        {Before::none, list, 99, 2, "copies of it lie in"},
        {Before::none, restore, 0, 2, "could not be put in order"},
        {Before::none, restore, 99, 0, restored, true},
        {Before::none, restore, 99, 2, "it stays as it is"},
        {Before::headless, list, 99, 2, "numalink-cli check --restore "},
        {Before::none, restore, 99, 0, restored, true},
        {Before::lineEnd, list, 99, 0, "   ETRIS\n"},
        {Before::hold, repair, 99, 2, "in use by another program"},
        {Before::remove, repair, 99, 2, "copies of it lie in"},
        {Before::none, restore, 99, 0, restored, true},
    };
    filePort.writeAt = [](int to, std::uint64_t offset, const void *bytes, std::size_t count) {
        return writesLeft-- > 0 ? systemFilePort.writeAt(to, offset, bytes, count) : 0;
    };
    for (const Row &row : rows) {
        int held = -1;
        if (row.before == Before::damage) scratch.write(name, scratch.read(name).replace(8032, 1, "x"));
        if (row.before == Before::hold) filePort.openLocked((scratch.path + name).c_str(), false, held);
        if (row.before == Before::empty) scratch.write(copy, scratch.read(name));
        if (row.before == Before::empty) scratch.write(name, "");
        if (row.before == Before::headless) scratch.write(name, scratch.read(name).replace(0, 1, "x"));
        if (row.before == Before::lineEnd)
            scratch.write(name, scratch.read(name).replace(scratch.read(name).find("TETRIS"), 1, "\n"));
        if (row.before == Before::remove) std::filesystem::remove(scratch.path + name);
        const std::string bytes = scratch.read(name);
        writesLeft = row.writes;
        Words arguments = row.command;
        arguments.insert(arguments.begin() + 1, "library/new");
        const Outcome outcome = run(arguments);
        if (held >= 0) filePort.close(held);
        EXPECT_EQ(outcome.status, row.status) << row.tells;
        EXPECT_THAT(outcome.out + outcome.err, HasSubstr(row.tells));
        EXPECT_TRUE(row.changes || scratch.read(name) == bytes) << row.tells;
    }
    filePort = systemFilePort;
    EXPECT_EQ(scratch.read(name), scratch.read(copy));
    EXPECT_THAT(scratch.read(name + ".damaged-3"), StartsWith("xAINHEADER"));
}

}  // namespace
}  // namespace numalink
