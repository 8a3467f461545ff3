// make_language texts.tsv own_texts.tsv texts.inc FOLDER: writes FOLDER/LANGUAGE.clf for each language column, and the
// enumerators of all texts, in C++. texts.tsv has a row a number (1 to 163, and 0 for the language's name in itself);
// own_texts.tsv a row a text of our own, whose number (164 to 199) is shared: such texts are joined by "|". Columns:
// number, name, then one a language, English first. Behind the name may stand "@" and a menu, in which no two texts may
// share a key, or "@" and the most letters that the place of the text has room for. Refuses gaps, names that come
// twice, translations whose %d and %s differ from the English ones, and more texts than the program keeps of two
// languages.
#include <algorithm>
#include <charconv>
#include <map>
#include <set>

#include "line_reader.h"

namespace {

constexpr int languageNameNumber = 0, firstOwnNumber = 164, textNumberEnd = 200;
// The program's table keeps 262,144 bytes of texts, terminators included; the current language and the fallback share
// it.
constexpr std::size_t mostTextBytes = 262144 / 2;
const std::set<int> unusedNumbers = {5, 29, 80, 94, 95};

std::string placeholdersOf(const std::string &file, const tool::Line &line, const std::string &text) {
    std::string found;
    for (std::size_t i = 0; i + 1 <= text.size(); i++) {
        if (text[i] != '%') continue;
        const char which = i + 1 < text.size() ? text[i + 1] : '\0';
        if (which != 'd' && which != 's' && which != '%') tool::fault(file, line.number, "a % that is no %d, %s or %%");
        if (which != '%') found += which;
        i++;
    }
    return found;
}

struct Row {
    int number;
    std::string name;
    std::vector<std::string> places;  // menus, or the most letters
    std::vector<std::string> texts;
};

struct Table {
    std::vector<std::string> languages;
    std::vector<Row> rows;
};

int numberOf(const std::string &file, const tool::Line &line, const std::string &text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) tool::fault(file, line.number, "no number: " + text);
    return number;
}

Table readTable(const std::string &file, bool own) {
    Table table;
    for (const tool::Line &line : tool::readLines(file)) {
        if (line.text.empty() || line.text[0] == '#') continue;
        std::vector<std::string> fields = tool::splitAt(line.text, '\t');
        if (table.languages.empty()) {
            table.languages.assign(fields.begin() + 2, fields.end());
            continue;
        }
        if (fields.size() != table.languages.size() + 2) tool::fault(file, line.number, "a language is missing");
        const std::vector<std::string> name = tool::splitAt(fields[1], '@');
        Row row{numberOf(file, line, fields[0]), name[0], {}, {}};
        if (name.size() > 1) row.places = tool::splitAt(name[1], ',');
        row.texts.assign(fields.begin() + 2, fields.end());
        if (own != (row.number >= firstOwnNumber) || row.number < languageNameNumber || row.number >= textNumberEnd)
            tool::fault(file, line.number, "number out of range");
        for (const std::string &text : row.texts) {
            if (text.empty() || text.find('"') != std::string::npos || (own && text.find('|') != std::string::npos))
                tool::fault(file, line.number, "a text is empty, or holds a double quote or a bar");
            if (placeholdersOf(file, line, text) != placeholdersOf(file, line, row.texts[0]))
                tool::fault(file, line.number, "placeholders differ from the English ones: " + text);
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

void checkNumbers(const std::string &file, const Table &table) {
    std::set<int> seen;
    for (const Row &row : table.rows)
        if (!seen.insert(row.number).second) tool::fault(file, 0, "number " + std::to_string(row.number) + " twice");
    for (int number = languageNameNumber; number < firstOwnNumber; number++)
        if (!seen.contains(number) && !unusedNumbers.contains(number))
            tool::fault(file, 0, "number " + std::to_string(number) + " is missing");
}

// The letter behind the one "&" of a menu text, in lower case if it is of A to Z, or 0. "&&" is a plain "&".
char menuKey(const std::string &text) {
    char key = '\0';
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text[i] != '&') continue;
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (next != '&' && (key != '\0' || static_cast<unsigned char>(next) < 0x21)) return '\0';
        if (next != '&') key = next >= 'A' && next <= 'Z' ? static_cast<char>(next - 'A' + 'a') : next;
        i++;
    }
    return key;
}

void checkPlace(const std::string &file, const std::string &place, const std::string &text,
                std::map<std::string, std::string> &taken) {
    if (place[0] >= '0' && place[0] <= '9') {
        const auto letters =
            std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
        if (letters > std::stoi(place)) tool::fault(file, 0, "too long for its place: " + text);
        return;
    }
    const char key = menuKey(text);
    if (key == '\0') tool::fault(file, 0, "a menu text needs one & ahead of its key: " + text);
    const auto [at, isNew] = taken.emplace(place + key, text);
    if (!isNew) tool::fault(file, 0, text + " has the key of " + at->second);
}

void checkPlaces(const std::string &file, const std::vector<Row> &rows, std::size_t languages) {
    for (std::size_t column = 0; column < languages; column++) {
        std::map<std::string, std::string> taken;  // by menu and key
        for (const Row &row : rows)
            for (const std::string &place : row.places) checkPlace(file, place, row.texts[column], taken);
    }
}

std::string languageFile(const Table &fixed, const Table &own, std::size_t column) {
    std::map<int, std::string> texts;
    for (const Row &row : fixed.rows) texts[row.number] = row.texts[column];
    for (const Row &row : own.rows) {
        std::string &text = texts[row.number];
        text += (text.empty() ? "" : "|") + row.texts[column];
    }
    const std::string name = texts.extract(languageNameNumber).mapped();
    std::string file = "[Language Info]\r\nName=" + name +
                       "\r\nAuthor=Vesper Foundry\r\nEMail=languages@numalink.example\r\nDate=2026-11-24\r\n\r\n"
                       "[Translation]\r\n";
    std::size_t bytes = 0;
    for (const auto &[number, text] : texts) {
        file += std::to_string(number) + "=\"" + text + "\"\r\n";
        bytes += text.size() + 1;
    }
    if (bytes > mostTextBytes) tool::fault(fixed.languages[column], 0, "more texts than the program's table can hold");
    return file;
}

// "name = number * 100 + place in its list," for each text. The language's name is no text of the program: none is 0.
std::string enumerators(const std::string &file, const std::vector<Row> &rows) {
    std::map<int, int> places;
    std::set<std::string> names = {"none"};
    std::string list = "none = 0,\n";
    for (const Row &row : rows) {
        if (row.number == languageNameNumber) continue;
        if (!names.insert(row.name).second) tool::fault(file, 0, "name " + row.name + " twice");
        if (places[row.number] >= 100) tool::fault(file, 0, "more than 100 texts under one number");
        list += row.name + " = " + std::to_string(row.number * 100 + places[row.number]++) + ",\n";
    }
    return list;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 5) tool::fault("make_language", 0, "usage: make_language texts.tsv own_texts.tsv texts.inc FOLDER");
    const Table fixed = readTable(argv[1], false);
    const Table own = readTable(argv[2], true);
    if (fixed.languages != own.languages) tool::fault(argv[2], 0, "the two tables differ in their languages");
    checkNumbers(argv[1], fixed);
    std::vector<Row> all = fixed.rows;
    all.insert(all.end(), own.rows.begin(), own.rows.end());
    checkPlaces(argv[2], all, fixed.languages.size());
    for (std::size_t column = 0; column < fixed.languages.size(); column++)
        tool::writeFile(std::string(argv[4]) + "/" + fixed.languages[column] + ".clf",
                        languageFile(fixed, own, column));
    tool::writeFile(argv[3], enumerators(argv[2], all));
    return 0;
}
