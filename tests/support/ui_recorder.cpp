#include "support/ui_recorder.h"

namespace numalink {

UiRecord uiRecord;

namespace {

Answer nextAnswer() {
    if (uiRecord.answers.empty()) return Answer::cancel;
    const Answer answer = uiRecord.answers.front();
    uiRecord.answers.pop_front();
    return answer;
}

Answer recordBox(const Box &box) {
    uiRecord.boxes.push_back(box);
    std::string line = "box " + std::to_string(box.bodyNumber) + " / " + std::to_string(box.titleNumber);
    for (const std::string &argument : box.arguments) line += " " + argument;
    uiRecord.lines.push_back(line);
    return nextAnswer();
}

void recordImport(ImportQuestion &question) {
    uiRecord.lastQuestion = question;
    std::string line = "import";
    for (const std::string &name : question.itemNames) line += " " + name;
    uiRecord.lines.push_back(line);
    question.action = uiRecord.importAction;
    if (!uiRecord.importFolder.empty()) question.folderName = uiRecord.importFolder;
}

void recordBitmap(BitmapQuestion &question) {
    uiRecord.lastBitmap = question;
    uiRecord.lines.push_back("bitmap " + question.fileName);
    question.accepted = uiRecord.bitmapAccepted;
    question.type = uiRecord.bitmapType;
}

constexpr UserInterface recorder = {
    .messageBox = recordBox,
    .statusText =
        [](StatusPart part, int, const std::string &text) {
            uiRecord.lines.push_back("status " + std::to_string(static_cast<int>(part)) + ": " + text);
        },
    .progressRange = [](int) {},
    .progressPosition = [](int) {},
    .waitCursor = [](bool) {},
    .refreshTree = [] { uiRecord.lines.push_back("tree"); },
    .leaveCurrentView = [] { return uiRecord.leaveAllowed; },
    .askImport = recordImport,
    .askExport = [](ExportQuestion &) {},
    .askBitmap = recordBitmap,
    .askItemExists =
        [](const std::string &question) {
            uiRecord.lines.push_back("ask " + question);
            return nextAnswer();
        },
    .askPictureSlot =
        [](const std::string &name, int preset) {
            uiRecord.lines.push_back("slot " + name + " " + std::to_string(preset));
            return uiRecord.pictureSlot;
        },
    .itemReceived = [](std::uint32_t id) { uiRecord.lines.push_back("received " + std::to_string(id)); },
    .transmitQueueChanged = [] {},
    .displayChanged = [] {},
};

}  // namespace

RecordedUi::RecordedUi() {
    uiRecord = UiRecord{};
    userInterface = recorder;
}

RecordedUi::~RecordedUi() { userInterface = userInterfaceSilent; }

}  // namespace numalink
