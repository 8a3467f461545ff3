// numalink-cli tokens: what the token table makes of text and of bytes.
#include <cstdio>
#include <iostream>
#include <iterator>
#include <memory>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/hex_text.h"
#include "cli/library_session.h"
#include "text/program_bytes.h"

namespace numalink {

namespace {

struct TokensOptions {
    std::vector<std::string> input;
    bool typed = false;
    bool decode = false;
};

// The arguments, a line each, or standard input without its last line end. Lines end in CR LF.
std::string inputText(const TokensOptions &options) {
    std::string lines;
    for (const std::string &line : options.input) lines += (lines.empty() ? "" : "\n") + line;
    if (options.input.empty()) {
        lines.assign(std::istreambuf_iterator<char>(std::cin), {});
        if (lines.ends_with('\n')) lines.pop_back();
    }
    std::string text;
    for (const char code : lines) {
        if (code == '\n') text += '\r';
        if (code != '\r') text += code;
    }
    return text;
}

int encode(const TokensOptions &options) {
    Bytes tokens;
    int missing = 0;
    std::string text = inputText(options);
    if (options.typed) text = calculatorFromUtf8(text, &missing);
    if (missing > 0) return commandFailed(std::to_string(missing) + " characters without a calculator code");
    const std::ptrdiff_t place = options.typed ? lineFromText(text, tokens) : tokensFromWords(text, tokens);
    if (place >= 0) return commandFailed("nothing fits at character " + std::to_string(place + 1));
    std::printf("%s\n", hexFromBytes(tokens).c_str());
    return exitDone;
}

int decode(const TokensOptions &options) {
    auto tokens = bytesFromHex(inputText(options));
    if (!tokens) return commandFailed("these are no pairs of hexadecimal digits");
    std::string text;
    if (options.typed) {
        tokens->insert(tokens->begin(), ':');
        text = utf8FromCalculator(programPlainText(*tokens));
    } else {
        text = wordsFromTokens(*tokens);
    }
    std::erase(text, '\r');
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
    return exitDone;
}

int runTokens(const TokensOptions &options) {
    if (!loadTables()) return commandFailed("casio.ptt beside the program can't be read");
    return options.decode ? decode(options) : encode(options);
}

void declareOptions(CLI::App &command, TokensOptions &options, const char *input) {
    // Not an option with values: those are taken apart where they stand in brackets, as matrices do.
    command.allow_extras();
    command.footer(std::string("INPUT: ") + input);
    command.callback([&command, &options] { options.input = command.remaining(); });
    command.add_flag("--typed", options.typed,
                     "Text as the editor shows and takes it (UTF-8) in place of exchange words");
}

}  // namespace

CommandRun declareTokens(CLI::App &command) {
    const auto options = std::make_shared<TokensOptions>();
    command.require_subcommand(1);
    CLI::App *encodeCommand = command.add_subcommand("encode", "Text to bytes: prints pairs of hexadecimal digits");
    declareOptions(*encodeCommand, *options, "Lines of text; standard input when there are none");
    CLI::App *decodeCommand = command.add_subcommand("decode", "Bytes to text");
    declareOptions(*decodeCommand, *options, "Pairs of hexadecimal digits; standard input when there are none");
    decodeCommand->parse_complete_callback([options] { options->decode = true; });
    return [options] { return runTokens(*options); };
}

}  // namespace numalink
