// make_language texts.tsv own_texts.tsv own_texts.inc FOLDER: writes FOLDER/LANGUAGE.clf for each language column, and
// the C++ list of our own texts. texts.tsv has a row a number (1 to 163, and 0 for the language's name in itself);
// own_texts.tsv a row a text of our own, whose number (164 to 199) is shared: such texts are joined by "|". Columns:
// number, name, then one a language, English first. Refuses gaps, translations whose %d and %s differ from the English
// ones, menus in which two entries share a key, texts too long for the calculators' surfaces, and more texts than the
// program keeps of two languages.
#include <charconv>
#include <map>
#include <set>

#include "line_reader.h"

namespace {

constexpr int languageNameNumber = 0, firstOwnNumber = 164, textNumberEnd = 200;
// The program's table keeps 65,536 bytes of texts, terminators included; the current language and the fallback share
// it.
constexpr std::size_t mostTextBytes = 65536 / 2;
const std::set<int> unusedNumbers = {5, 29, 80, 94, 95};

// The texts of each menu: the bar, File, Item, Edit, and the editor's own. Each needs a key of its own there. (Text 10,
// in the editor's menu too, is a toolbar label and has none.)
const std::vector<std::vector<int>> menus = {{67, 68, 69, 163, 70, 162, 71},
                                             {73, 74, 75, 76},
                                             {122, 77, 78, 79, 81, 82, 83, 84, 85},
                                             {86, 87, 88},
                                             {7, 8, 9, 11}};

// Code points that a text may have where a calculator surface or an item name takes it: the lines of the backup view,
// and the default name, which has to fit a program.
const std::map<int, std::size_t> widest = {{12, 24}, {13, 7}, {14, 7}, {15, 12}, {16, 10}, {19, 8}};

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
        Row row{numberOf(file, line, fields[0]), fields[1], {fields.begin() + 2, fields.end()}};
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

void checkMenus(const std::string &file, const std::map<int, std::string> &texts) {
    for (const std::vector<int> &menu : menus) {
        std::map<char, int> taken;
        for (int number : menu) {
            const char key = menuKey(texts.at(number));
            if (key == '\0') tool::fault(file, 0, "a menu text needs one & ahead of its key: " + texts.at(number));
            const auto [place, isNew] = taken.emplace(key, number);
            if (!isNew) tool::fault(file, 0, texts.at(number) + " has the key of " + texts.at(place->second));
        }
    }
}

void checkWidths(const std::string &file, const std::map<int, std::string> &texts) {
    for (const auto &[number, most] : widest) {
        std::size_t points = 0;
        for (const char byte : texts.at(number)) points += (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
        if (points > most) tool::fault(file, 0, "too long for its place: " + texts.at(number));
    }
}

void checkPlaces(const std::string &file, const Table &table) {
    for (std::size_t column = 0; column < table.languages.size(); column++) {
        std::map<int, std::string> texts;
        for (const Row &row : table.rows) texts[row.number] = row.texts[column];
        checkMenus(file, texts);
        checkWidths(file, texts);
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

// "name = number * 100 + place," for each text of our own.
std::string enumerators(const std::string &file, const Table &own) {
    std::map<int, int> places;
    std::set<std::string> names;
    std::string list;
    for (const Row &row : own.rows) {
        if (!names.insert(row.name).second) tool::fault(file, 0, "name " + row.name + " twice");
        if (places[row.number] >= 100) tool::fault(file, 0, "more than 100 texts under one number");
        list += row.name + " = " + std::to_string(row.number * 100 + places[row.number]++) + ",\n";
    }
    return list;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 5) tool::fault("make_language", 0, "usage: make_language texts.tsv own_texts.tsv own_texts.inc FOLDER");
    const Table fixed = readTable(argv[1], false);
    const Table own = readTable(argv[2], true);
    if (fixed.languages != own.languages) tool::fault(argv[2], 0, "the two tables differ in their languages");
    checkNumbers(argv[1], fixed);
    checkPlaces(argv[1], fixed);
    for (std::size_t column = 0; column < fixed.languages.size(); column++)
        tool::writeFile(std::string(argv[4]) + "/" + fixed.languages[column] + ".clf",
                        languageFile(fixed, own, column));
    tool::writeFile(argv[3], enumerators(argv[2], own));
    return 0;
}
