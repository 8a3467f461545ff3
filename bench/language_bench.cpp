// What the editor asks of a program of 60,000 bytes: its structure, its problems, and what completes a few letters.
#include <benchmark/benchmark.h>

#include "language/completion.h"
#include "language/problems.h"
#include "language/program_text.h"
#include "text/lenient_text.h"
#include "text/token_table.h"

namespace {

using namespace numalink;

constexpr std::size_t programSize = 60000;

Bytes longProgram() {
    tokenTableLoad();
    static constexpr char words[] =
        "\xF7\x00"
        "A=1\r\xF7\x01\xF7\x10"
        "1,2,\"SCORE\"\r\xF7\x04"
        "1\x0E"
        "B\xF7\x05"
        "9:B\x89"
        "A\x0E"
        "C:\xF7\x07\r\xF7\x03\rB>3\x13\xEC"
        "1\r";
    constexpr std::string_view block(words, sizeof words - 1);
    Bytes image = {':', 0xE2, '1', '\r'};
    while (image.size() < programSize) image.insert(image.end(), block.begin(), block.end());
    image.push_back(0xFF);
    return image;
}

void structure(benchmark::State &state) {
    const Bytes image = longProgram();
    for (auto _ : state) benchmark::DoNotOptimize(structureOf(image));
}
BENCHMARK(structure)->Unit(benchmark::kMillisecond);

void linesAndBytes(benchmark::State &state) {
    const Bytes image = longProgram();
    for (auto _ : state) benchmark::DoNotOptimize(programText(image));
}
BENCHMARK(linesAndBytes)->Unit(benchmark::kMillisecond);

void problems(benchmark::State &state) {
    const Bytes image = longProgram();
    ProblemContext context;
    context.knowsFolder = true;
    for (auto _ : state) benchmark::DoNotOptimize(problemsOf(structureOf(image), context));
}
BENCHMARK(problems)->Unit(benchmark::kMillisecond);

// From the letters to the list, labels and all.
void completion(benchmark::State &state) {
    const ProgramStructure program = structureOf(longProgram());
    const ViewLine line = typedLine(
        "1+2\xE2\x86\x92"
        "A:Loc");
    for (auto _ : state) {
        const CompletionQuery query = completionQuery(line, readLine(line, true), line.text.size());
        benchmark::DoNotOptimize(completionsOf(query, program, {}));
    }
}
BENCHMARK(completion)->Unit(benchmark::kMillisecond);

}  // namespace
