#include "cli/terminal_ui.h"

#include <cstdio>

#include "calculator/charset.h"
#include "store/items/arrivals.h"

namespace numalink {

namespace {

int boxCount = 0;
ImportAction importAction = ImportAction::none;
std::string importFolder;
std::optional<ArrivalChoice> arrivalChoice = ArrivalChoice::keepBoth;
std::string subject;  // told ahead of the next box, once
RasterType rasterType = RasterType::image;

Answer showBox(const Box &box) {
    boxCount++;
    if (!subject.empty()) std::fprintf(stderr, "numalink-cli: %s\n", onOneLine(subject).c_str());
    subject.clear();
    std::fprintf(stderr, "box %d %d: %s\n", textNumber(box.bodyText), textNumber(box.titleText),
                 onOneLine(box.body).c_str());
    return box.buttons == BoxButtons::ok ? Answer::ok : Answer::cancel;
}

void answerImport(ImportQuestion &question) {
    if (importAction == ImportAction::none) return;
    question.action = importAction;
    if (importAction == ImportAction::oneFolder) question.folderName = importFolder;
}

// What comes twice takes nothing's place.
void answerArrivals(ArrivalsQuestion &question) {
    for (ArrivalRow &row : question.rows) {
        const bool isTwice = row.state == ArrivalState::twice && arrivalChoice == ArrivalChoice::replace;
        if (row.state != ArrivalState::isNew && arrivalChoice)
            row.choice = isTwice ? ArrivalChoice::keepBoth : *arrivalChoice;
    }
    question.accepted = true;
}

void listArrivals(ArrivalsQuestion &question) {
    answerArrivals(question);
    question.accepted = false;
    for (const ArrivalRow &row : question.rows)
        std::printf("%s/%s: %s, %s\n", onOneLine(row.where).c_str(), onOneLine(row.name).c_str(),
                    wordsOf(row.state).c_str(), choiceWords(row).c_str());
}

void answerBitmap(BitmapQuestion &question) {
    question.type = rasterType;
    question.accepted = true;
}

}  // namespace

std::string onOneLine(const std::string &text) {
    std::string line;
    for (std::size_t at = 0; at < text.size(); at++) {
        const auto code = static_cast<unsigned char>(text[at]);
        const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
        const bool second = code == 0xC2 && next >= 0x80 && next < 0xA0;
        if (second) at++;
        line += second || code < ' ' || code == 0x7F ? ' ' : text[at];
    }
    return line;
}

void terminalUiInstall() {
    boxCount = 0;
    importAction = ImportAction::none;
    importFolder.clear();
    arrivalChoice = ArrivalChoice::keepBoth;
    subject.clear();
    rasterType = RasterType::image;
    userInterface = userInterfaceSilent;
    userInterface.messageBox = showBox;
    userInterface.askImport = answerImport;
    userInterface.askArrivals = answerArrivals;
    userInterface.askBitmap = answerBitmap;
    userInterface.statusText = [](StatusPart, Text, const std::string &text) {
        if (!text.empty()) std::printf("%s\n", onOneLine(text).c_str());
    };
}

std::string printableName(std::string_view name) { return onOneLine(utf8FromCalculator(name)); }

void terminalSubject(const std::string &about) { subject = about; }

int terminalBoxCount() { return boxCount; }

void terminalImportAnswer(ImportAction action, const std::string &folderName) {
    importAction = action;
    importFolder = folderName;
}

void terminalArrivalChoice(std::optional<ArrivalChoice> choice) { arrivalChoice = choice; }

void terminalOnlyLists() { userInterface.askArrivals = listArrivals; }

void terminalRasterAnswer(const std::string &type) {
    rasterType = type == "sharp" ? RasterType::sharp : RasterType::image;
}

}  // namespace numalink
