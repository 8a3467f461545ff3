#include "cli/terminal_ui.h"

#include <algorithm>
#include <cstdio>

namespace numalink {

namespace {

int boxCount = 0;
ImportAction importAction = ImportAction::none;
std::string importFolder;
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

std::string onOneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char code) { return code >= 0 && code < ' '; }, ' ');
    return text;
}

void terminalUiInstall() {
    boxCount = 0;
    importAction = ImportAction::none;
    importFolder.clear();
    subject.clear();
    rasterType = RasterType::image;
    userInterface = userInterfaceSilent;
    userInterface.messageBox = showBox;
    userInterface.askImport = answerImport;
    userInterface.askBitmap = answerBitmap;
    userInterface.statusText = [](StatusPart, Text, const std::string &text) {
        if (!text.empty()) std::printf("%s\n", onOneLine(text).c_str());
    };
}

void terminalSubject(const std::string &about) { subject = about; }

int terminalBoxCount() { return boxCount; }

void terminalImportAnswer(ImportAction action, const std::string &folderName) {
    importAction = action;
    importFolder = folderName;
}

void terminalRasterAnswer(const std::string &type) {
    rasterType = type == "sharp" ? RasterType::sharp : RasterType::image;
}

}  // namespace numalink
