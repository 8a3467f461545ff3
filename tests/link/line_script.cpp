#include "link/line_script.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace numalink {

namespace {

bool parseToken(const std::string &text, std::size_t &at, Bytes &bytes) {
    Bytes part;
    if (text[at] == '"') {
        const std::size_t end = text.find('"', at + 1);
        if (end == std::string::npos) return false;
        part.assign(text.begin() + static_cast<std::ptrdiff_t>(at + 1),
                    text.begin() + static_cast<std::ptrdiff_t>(end));
        at = end + 1;
    } else {
        std::size_t used = 0;
        const int value = std::stoi(text.substr(at, 2), &used, 16);
        if (used != 2) return false;
        part.push_back(static_cast<std::uint8_t>(value));
        at += 2;
    }
    std::size_t count = 1;
    if (at < text.size() && text[at] == '*') {
        std::size_t used = 0;
        count = std::stoul(text.substr(at + 1), &used);
        at += 1 + used;
    }
    for (std::size_t i = 0; i < count; i++) bytes.insert(bytes.end(), part.begin(), part.end());
    return true;
}

Bytes parseBytes(const std::string &text, std::string &fault) {
    Bytes bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == ' ') {
            at++;
        } else if (!parseToken(text, at, bytes)) {
            fault = "bad bytes: " + text;
            break;
        }
    }
    return bytes;
}

ScriptItem parseItem(std::istringstream &words, bool pathFirst) {
    ScriptItem item;
    std::string word;
    if (!pathFirst) {
        words >> word;
        item.inTemp = word == "temp";
        if (item.inTemp) words >> word;
        item.kind = static_cast<ItemKind>(std::stoul(word));
        std::getline(words >> std::ws, item.path);
        return item;
    }
    std::string all;
    std::getline(words >> std::ws, all);
    const std::size_t gap = all.rfind(' ');
    item.path = all.substr(0, gap);
    item.kind = static_cast<ItemKind>(std::stoul(all.substr(gap + 1)));
    return item;
}

Bytes parseInfo(std::istringstream &words) {
    ProgramInfo info;
    words >> info.imageLength >> info.name >> info.password;
    return encodeProgramInfo(info);
}

// Directives that set up or describe; false when the word isn't one.
bool parseSetting(LineScript &script, const std::string &word, std::istringstream &words, ScriptItem *&current) {
    std::string rest;
    if (word == "have" || word == "=") {
        auto &items = word == "=" ? script.expected : script.have;
        items.push_back(parseItem(words, word == "="));
        current = &items.back();
        return true;
    }
    if (word == "info" && current) {
        current->head = parseInfo(words);
        return true;
    }
    std::getline(words >> std::ws, rest);
    if (word == "head" && current) {
        current->head = parseBytes(rest, script.fault);
    } else if (word == "data" && current) {
        const Bytes more = parseBytes(rest, script.fault);
        current->data.insert(current->data.end(), more.begin(), more.end());
    } else if (word == "type") {
        script.algebra = rest == "algebra";
    } else if (word == "removecolour") {
        script.removeColour = true;
    } else if (word == "queue") {
        script.queue.push_back(rest);
    } else if (word == "delete") {
        script.deleted.push_back(rest);
    } else if (word == "gone") {
        script.gone.push_back(rest);
    } else if (word == "answer") {
        script.answers.push_back(rest);
    } else if (word == "slot") {
        script.slot = std::stoi(rest);
    } else if (word == "left") {
        script.left = std::stoul(rest);
    } else {
        return false;
    }
    return true;
}

struct EventWord {
    const char *word;
    EventSort sort;
};
constexpr EventWord eventWords[] = {
    {">", EventSort::sent},    {"<", EventSort::received},      {"<<", EventSort::dropped},
    {"~", EventSort::silence}, {"!", EventSort::shown},         {"tick", EventSort::tick},
    {"cut", EventSort::cut},   {"break", EventSort::breakDisk}, {"begin", EventSort::begin}};

bool parseEvent(LineScript &script, const std::string &word, const std::string &line, int lineNumber) {
    for (const EventWord &row : eventWords) {
        if (word != row.word) continue;
        const std::size_t gap = line.find(' ');
        const std::string rest = gap == std::string::npos ? "" : line.substr(gap + 1);
        ScriptEvent event{row.sort, {}, rest, lineNumber};
        if (row.sort == EventSort::sent || row.sort == EventSort::received || row.sort == EventSort::dropped)
            event.bytes = parseBytes(rest, script.fault);
        script.events.push_back(event);
        return true;
    }
    return false;
}

}  // namespace

LineScript readLineScript(const std::string &path) {
    LineScript script;
    script.name = std::filesystem::path(path).stem();
    std::ifstream file(path);
    std::string line;
    ScriptItem *current = nullptr;
    for (int number = 1; std::getline(file, line); number++) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        std::string word;
        words >> word;
        if (!parseEvent(script, word, line, number) && !parseSetting(script, word, words, current))
            script.fault = "line " + std::to_string(number) + ": " + line;
    }
    return script;
}

std::vector<std::string> lineScriptPaths() {
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_LINES))
        if (entry.path().extension() == ".line") paths.push_back(entry.path());
    std::ranges::sort(paths);
    return paths;
}

}  // namespace numalink
