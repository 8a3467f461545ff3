#include "cli/terminal_ui.h"

#include <cstdio>

#include "calculator/charset.h"

namespace numalink {

namespace {

int boxCount = 0;
ImportAction importAction = ImportAction::none;
std::string importFolder;
ImportTaken importTaken = ImportTaken::keepBoth;
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
    importTaken = ImportTaken::keepBoth;
    subject.clear();
    rasterType = RasterType::image;
    userInterface = userInterfaceSilent;
    userInterface.messageBox = showBox;
    userInterface.askImport = answerImport;
    userInterface.askImportTaken = [](const ImportTakenQuestion &) { return importTaken; };
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

void terminalImportTaken(ImportTaken taken) { importTaken = taken; }

void terminalRasterAnswer(const std::string &type) {
    rasterType = type == "sharp" ? RasterType::sharp : RasterType::image;
}

}  // namespace numalink
