// No false alarm: the programs of the samples and of all run files, which work as their authors mean them. Where a run
// file is there to make a mistake, the mistake stands in the list below.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "calculator/charset.h"
#include "emulator/expressions.h"
#include "emulator/run_files.h"
#include "language/problems.h"
#include "telling/language_table.h"
#include "text/program_bytes.h"

namespace numalink {
namespace {

using Programs = std::vector<std::pair<std::string, Bytes>>;

// "FILE PROGRAM kind words" of each problem.
std::vector<std::string> toldOf(const std::string &file, const Programs &programs) {
    std::vector<std::string> told;
    for (const auto &[name, image] : programs) {
        ProblemContext context;
        context.knowsFolder = true;
        context.name = name;
        context.readElsewhere.set();  // a run file looks at all variables afterwards
        for (const auto &[other, bytes] : programs)
            if (other != name) context.folder.push_back(summaryOf(other, structureOf(bytes)));
        for (const Problem &problem : problemsOf(structureOf(image), context)) {
            std::string words = wordsFromTokens(ByteView(image).subspan(problem.at, problem.length));
            words.resize(std::min<std::size_t>(words.size(), 30));
            std::ranges::replace_if(
                words, [](char sign) { return sign == '\r' || sign == '\n'; }, '~');
            told.push_back(file + " " + utf8FromCalculator(name) + " " + problemId(problem.kind) + " " + words);
        }
    }
    return told;
}

std::vector<std::string> listed(const char *path) {
    std::vector<std::string> lines;
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);)
        if (!line.empty() && line[0] != '#') lines.push_back(line);
    return lines;
}

TEST(ProgramProblems, NoneThatAreNotThere) {
    prepareRuns();
    languageLoad("English", "English");
    std::vector<std::string> told;
    int count = 0;
    const auto look = [&](const std::string &path, const Programs &programs) {
        const auto found = toldOf(std::filesystem::path(path).stem(), programs);
        told.insert(told.end(), found.begin(), found.end());
        count += static_cast<int>(programs.size());
    };
    for (const char *folder : {NUMALINK_RUNS_FOLDER, NUMALINK_PROGRAMS_FOLDER}) {
        for (const std::string &path : runFiles(folder)) {
            const RunFile file = readRunFile(path);
            Programs programs;
            for (const auto &[name, lines] : file.all("program"))
                programs.emplace_back(calculatorFromUtf8(name), imageOfWords(joined(lines, "\r\n")));
            look(path, programs);
        }
    }
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_SAMPLE_SOURCES)) {
        std::ifstream stream(entry.path());
        Lines lines;
        for (std::string line; std::getline(stream, line);) lines.push_back(line);
        if (!entry.path().stem().string().starts_with("picture"))
            look(entry.path(), {{"SAMPLE", imageOfWords(joined(lines, "\r\n"))}});
    }
    EXPECT_GE(count, 450);
    std::ranges::sort(told);
    const auto known = listed(NUMALINK_KNOWN_PROBLEMS);
    Lines more, less;
    std::ranges::set_difference(told, known, std::back_inserter(more));
    std::ranges::set_difference(known, told, std::back_inserter(less));
    EXPECT_EQ(more, Lines{}) << "told, but not known";
    EXPECT_EQ(less, Lines{}) << "known, but not told";
}

}  // namespace
}  // namespace numalink
