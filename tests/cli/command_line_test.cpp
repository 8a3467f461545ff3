// The command line from arguments to output, on libraries of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "cli/hex_text.h"
#include "platform/file_port.h"
#include "platform/user_interface.h"
#include "support/cat_records.h"
#include "support/scratch_folder.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

Outcome run(std::vector<std::string> arguments) {
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

struct CommandLine : testing::Test {
    CommandLine() {
        scratch.write("games.cat", catProgram("SNAKE", "\\If A\\<>1\r\n\\Then \"a\\->b\"\\Disp\\Stop") +
                                       catValues("MT", "Mat A", 1, 1, "Value : 1 1 2\r\n"));
    }
    std::vector<std::string> on(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin() + 1, library);
        return arguments;
    }

    ScratchFolder scratch;
    const std::string file = scratch.path + "games.cat";
    const std::string library = scratch.path + "library/new";
};

TEST_F(CommandLine, ImportedItemsAreListedAndShown) {
    const Outcome imported = run(on({"import", file, "--into", "standard"}));
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(imported.err, "");
    const auto list = nlohmann::json::parse(run(on({"list", "--json"})).out);
    ASSERT_EQ(list.size(), 5u) << list.dump(1);
    const auto snake = std::ranges::find_if(list, [](const auto &item) { return item["name"] == "SNAKE"; });
    EXPECT_THAT((*snake)["data"].get<std::string>(), StartsWith("3AF70041113"));
    EXPECT_EQ((*snake)["head"].get<std::string>().size(), 64u);
    EXPECT_EQ((*snake)["kind"], 15);

    const std::string folder = run(on({"list"})).out;
    EXPECT_THAT(folder, HasSubstr("SNAKE"));
    const Outcome byId = run(on({"show", std::to_string((*snake)["id"].get<int>())}));
    EXPECT_EQ(byId.out, "If A≠1\nThen \"a→b\"◢\nStop\n");
    EXPECT_EQ(byId.status, 0);
    const auto parent = std::ranges::find_if(list, [&](const auto &item) { return item["id"] == (*snake)["parent"]; });
    EXPECT_EQ(run(on({"show", "/" + (*parent)["name"].get<std::string>() + "/snake"})).out, byId.out);
}

TEST_F(CommandLine, WithoutAnAnswerSeveralItemsGoToAFolder) {
    EXPECT_EQ(run(on({"import", file})).status, 0);
    EXPECT_THAT(run(on({"show", "games/Mat A"})).out, HasSubstr("\u2588")) << "drawn in half blocks";
    EXPECT_EQ(run(on({"import", file, "--into", "Übung/x"})).status, 0);
    EXPECT_EQ(run(on({"show", "/Ubung/x/SNAKE"})).status, 0);
    EXPECT_THAT(run(on({"show", "/Übung/x/"})).out, StartsWith("x: kind 1000"));
}

TEST_F(CommandLine, WhatGoesWrongHasItsStatus) {
    const Outcome missing = run(on({"import", scratch.path + "none.cat"}));
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, StartsWith("box 93 2: "));
    EXPECT_EQ(std::ranges::count(missing.err, '\n'), 1);
    const std::string other = scratch.path + "other.cat";
    scratch.write("other.cat", "nothing");
    const Outcome two = run(on({"import", file, other}));
    EXPECT_THAT(two.err, StartsWith("numalink-cli: " + other + "\nbox 99 2: ")) << "which of the two";
    EXPECT_EQ(run(on({"show", "/nothing"})).status, 2);
    EXPECT_EQ(run({"nonsense"}).status, 2);
    EXPECT_EQ(run({"--help"}).status, 0);
    const Outcome noFolder = run({"list", file});
    EXPECT_EQ(noFolder.status, 2);
    EXPECT_THAT(noFolder.err, StartsWith("box 33 2: "));
}

TEST_F(CommandLine, TokensBothWays) {
    EXPECT_EQ(run({"tokens", "encode", "\\Xmin\\->A", "B"}).out, "7F000E410D42\n");
    EXPECT_EQ(run({"tokens", "decode", "7F00 0E", "41 0D42"}).out, "\\Xmin\\->A\nB\n");
    EXPECT_EQ(run({"tokens", "encode", "--typed", "Xmin→A"}).out, "7F000E41\n");
    EXPECT_EQ(run({"tokens", "decode", "--typed", "7F000E41"}).out, "Xmin→A\n");
    EXPECT_EQ(run({"tokens", "encode", "é"}).status, 2);
    EXPECT_EQ(run({"tokens", "decode", "7F0"}).status, 2);
}

TEST(HexText, PairsOnly) {
    EXPECT_THAT(*bytesFromHex(" 0a\nFF00 "), ElementsAre(10, 255, 0));
    EXPECT_EQ(bytesFromHex("1 2"), std::nullopt);
    EXPECT_EQ(bytesFromHex("+1"), std::nullopt);
}

TEST_F(CommandLine, WhatWasImportedGoesOutAndIsConverted) {
    ASSERT_EQ(run(on({"import", file, "--into", "standard"})).status, 0);
    const std::string cas = scratch.path + "out.cas";
    const Outcome exported = run(on({"export", "--to", "cas", cas, "/Programs/SNAKE", "/Matrices/Mat A"}));
    EXPECT_EQ(exported.status, 0) << exported.err;
    EXPECT_THAT(run(on({"export", "--to", "cas", cas, "/Programs/SNAKE"})).err, HasSubstr("exists already"));
    EXPECT_EQ(run(on({"export", "--to", "cas", cas, "/Programs/NONE"})).status, 2);
    const std::string cat = scratch.path + "out.cat";
    EXPECT_EQ(run({"convert", cas, cat}).status, 0);
    EXPECT_THAT(scratch.read("out.cat"), HasSubstr("\\If A\\<>1\r\n\\Then \"a\\->b\"\\Disp\\Stop\r\n%End\r\n"));
    EXPECT_THAT(scratch.read("out.cat"), HasSubstr("Value : 1 1 2\r\n%End\r\n"));
    EXPECT_EQ(run({"convert", cat, scratch.path + "out.txt"}).status, 2);
}

TEST_F(CommandLine, BitmapsByRasterType) {
    scratch.write("dot.ppm", "P6\n1 1\n255\n" + std::string("\xFF\x64\x00", 3));
    EXPECT_EQ(run(on({"import", scratch.path + "dot.ppm", "--into", "standard", "--raster", "sharp"})).status, 0);
    EXPECT_THAT(run(on({"show", "/Pictures/dot"})).out, HasSubstr("\u2588"));
    EXPECT_EQ(run({"convert", scratch.path + "dot.ppm", scratch.path + "dot.cat", "--raster", "sharp"}).status, 0);
    EXPECT_THAT(scratch.read("dot.cat"), HasSubstr("Color:1\r\n" + std::string(32, 'F')));
    EXPECT_EQ(run(on({"import", file, "--raster", "best"})).status, 2);
}

std::vector<std::string> namesOf(const nlohmann::ordered_json &object) {
    std::vector<std::string> names;
    for (const auto &[name, value] : object.items()) names.push_back(name);
    return names;
}

TEST_F(CommandLine, AProgramRunsWithItsFolder) {
    scratch.write("run.cat", catProgram("MAIN",
                                        "?\\->A:\\Getkey\\->B:\\Getkey\\->\\r\r\n\\Prog \"SUB\"\r\n1,2\r\n"
                                        "{1,1,2}\\->\\List 3:\\Mat B[1,2]+3\\{i}\\->D:\\ViewWindow 0,127,0,0,63,0\r\n"
                                        "\\Plot 1.5,1.5\\Disp") +
                                 catProgram("SUB", "\\File2:5\\->Z") +
                                 catValues("MT", "Mat B", 1, 2, "Value : 1 1 2\r\nValue : 1 2 7\r\n"));
    ASSERT_EQ(run(on({"import", scratch.path + "run.cat", "--into", "games"})).status, 0);
    const std::vector<std::string> runMain = {
        "run", "games/MAIN", "--keys", "74,32,31,27", "--getkey", "31,72", "--set", "FillListsMatrices=0", "--json"};
    const Outcome outcome = run(on(runMain));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const auto report = nlohmann::ordered_json::parse(outcome.out);
    EXPECT_THAT(namesOf(report), ElementsAre("variables", "lists", "matrices", "file", "textScreen", "graph",
                                             "matrixScreen", "display", "textRows", "textRow", "textColumn",
                                             "screenMode", "errors", "errorFlag", "boxes", "statements", "ended"));
    const auto expected = nlohmann::ordered_json::parse(R"({
        "variables": {"A": ["-0x1.cp+2", "0x0p+0"], "B": ["0x1.fp+4", "0x0p+0"], "D": ["0x1.cp+2", "0x1.8p+1"],
                      "X": ["0x1.4p+1", "0x0p+0"], "Y": ["0x1.8p+0", "0x0p+0"], "Z": ["0x1.4p+2", "0x0p+0"],
                      "r": ["0x1.2p+6", "0x0p+0"], "Ans": ["0x1p+0", "0x0p+0"], "Xmax": ["0x1.fcp+6", "0x0p+0"],
                      "Ymax": ["0x1.f8p+5", "0x0p+0"]},
        "lists": {"List 2/3": {"rows": 3, "cols": 1, "cells": [["0x1p+0", 2], ["0x1p+1", 1]]}},
        "matrices": {"Mat B": {"rows": 1, "cols": 2, "cells": [["0x1p+1", 1], ["0x1.cp+2", 1]]}},
        "file": 2,
        "graph": [[62, [[128, 13163710]]], [1, [[2, 13163710], [1, 13107200], [125, 13163710]]], [1, [[128, 13163710]]]],
        "textRow": 3, "textColumn": 0, "screenMode": 1, "errors": [["Syn ERROR", 7]], "errorFlag": false, "boxes": [],
        "statements": 11, "ended": "cursor"})");
    for (const auto &[name, value] : expected.items()) EXPECT_EQ(report[name], value) << name;
    EXPECT_EQ(report["textRows"].size(), 8u);
    EXPECT_THAT(report["textRows"][1].get<std::string>(), StartsWith("7- "));
    EXPECT_NE(report["display"], report["graph"]) << "the cursor's cross is on the display alone";

    std::vector<std::string> halting = on(runMain);
    halting.insert(halting.end(), {"--set", "HaltOnError=1"});
    const auto halted = nlohmann::ordered_json::parse(run(halting).out);
    EXPECT_EQ(halted["boxes"], nlohmann::ordered_json::parse(R"([[66, 65, "MAIN", "3"]])"));
    EXPECT_EQ(halted["ended"], "end");
    EXPECT_EQ(run(on({"run", "games/Mat B"})).status, 2);
    EXPECT_EQ(run(on({"run", "games/NONE"})).status, 2);
}

int writesLeft = 0;

TEST_F(CommandLine, CheckTellsOfALibraryAndRepairsIt) {
    ASSERT_EQ(run(on({"import", file})).status, 0);
    const std::string name = "library/new/storage.dat", sound = "places with damage: 0\n";
    enum class Before { none, damage, hold, remove };
    struct Row {
        Before before;
        bool repair;
        int writes, status;
        std::string tells;
    };
    const Row rows[] = {
        {Before::none, false, 99, 0, sound},
        {Before::none, true, 99, 0, sound},
        {Before::damage, false, 99, 1, "lost: at 8032, id "},
        {Before::none, true, 0, 2, "could not be repaired"},
        {Before::none, true, 1, 2, "could not be repaired"},  // once its copy is written
        {Before::none, true, 99, 1, "repaired; the damaged file is kept"},
        {Before::none, false, 99, 0, sound},
        {Before::hold, true, 99, 2, "in use by another program"},
        {Before::remove, true, 99, 2, "there is no such file"},
    };
    filePort.writeAt = [](int to, std::uint64_t offset, const void *bytes, std::size_t count) {
        return writesLeft-- > 0 ? systemFilePort.writeAt(to, offset, bytes, count) : 0;
    };
    for (const Row &row : rows) {
        int held = -1;
        if (row.before == Before::damage) scratch.write(name, scratch.read(name).replace(8032, 1, "x"));
        if (row.before == Before::hold) filePort.openLocked((scratch.path + name).c_str(), false, held);
        if (row.before == Before::remove) std::filesystem::remove(scratch.path + name);
        const std::string bytes = scratch.read(name);
        writesLeft = row.writes;
        const Outcome outcome = run(row.repair ? on({"check", "--repair"}) : on({"check"}));
        if (held >= 0) filePort.close(held);
        EXPECT_EQ(outcome.status, row.status) << row.tells;
        EXPECT_THAT(outcome.out + outcome.err, HasSubstr(row.tells));
        EXPECT_TRUE((row.status == 1 && row.repair) || scratch.read(name) == bytes) << row.tells;
    }
    filePort = systemFilePort;
}

TEST_F(CommandLine, BytesRunAsAProgram) {
    const auto eval = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "eval");
        arguments.push_back("--json");
        return nlohmann::ordered_json::parse(run(arguments).out);
    };
    const auto twice = eval({"31C00E41", "--repeat", "2", "--keys", "31"});  // 1Ans→A, twice in each run
    EXPECT_EQ(twice["ended"], "end");
    EXPECT_EQ(twice["statements"], 2);
    const auto limited = eval({"E2310D4189310E410DEC31", "--statements", "5"});
    EXPECT_EQ(limited["ended"], "limit");
    EXPECT_EQ(limited["statements"], 5);
    EXPECT_EQ(limited["variables"]["A"][0], "0x1p+1");
    EXPECT_EQ(eval({"310C"})["ended"], "triangle");
    EXPECT_EQ(eval({"3F0E41"})["ended"], "input");
    EXPECT_EQ(run({"eval", "2241220D312C32"}).out,
              "A\n                    0\n\n\n\n\n\n     Syn ERROR\n"
              "Syn ERROR in statement 2\nended: end\n");
    EXPECT_EQ(run({"eval", "3"}).status, 2);
    EXPECT_EQ(run({"eval", "31", "--set", "FullSpeed"}).status, 2);
}

}  // namespace
}  // namespace numalink
