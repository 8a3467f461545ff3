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
    std::string line =
        "box " + std::to_string(textNumber(box.bodyText)) + " / " + std::to_string(textNumber(box.titleText));
    for (const std::string &argument : box.arguments) line += " " + argument;
    uiRecord.lines.push_back(line);
    return nextAnswer();
}

void recordImport(ImportQuestion &question) {
    uiRecord.lastQuestion = question;
    std::string line = "import";
    for (const std::string &name : question.itemNames) line += " " + name;
    uiRecord.lines.push_back(line);
    if (uiRecord.answerImport) return uiRecord.answerImport(question);
    question.action = uiRecord.importAction;
    if (!uiRecord.importFolder.empty()) question.folderName = uiRecord.importFolder;
}

void recordArrivals(ArrivalsQuestion &question) {
    for (ArrivalRow &row : question.rows) {
        uiRecord.arrivals.push_back(row);
        if (row.state != ArrivalState::isNew && uiRecord.arrivalChoice) row.choice = *uiRecord.arrivalChoice;
    }
    uiRecord.notes = question.notes;
    if (uiRecord.whileListed) uiRecord.whileListed();
    question.accepted = uiRecord.arrivalsAccepted;
}

void recordBitmap(BitmapQuestion &question) {
    uiRecord.lastBitmap = question;
    uiRecord.lines.push_back("bitmap " + question.fileName);
    question.accepted = uiRecord.bitmapAccepted;
    question.type = uiRecord.bitmapType;
}

void recordLine(const std::string &line) { uiRecord.lines.push_back(line); }

}  // namespace

RecordedUi::RecordedUi() {
    uiRecord = UiRecord{};
    userInterface = userInterfaceSilent;
    userInterface.messageBox = recordBox;
    userInterface.statusText = [](StatusPart part, Text, const std::string &text) {
        recordLine("status " + std::to_string(static_cast<int>(part)) + ": " + text);
    };
    userInterface.refreshTree = [] { recordLine("tree"); };
    userInterface.leaveCurrentView = [] { return uiRecord.leaveAllowed; };
    userInterface.askImport = recordImport;
    userInterface.askArrivals = recordArrivals;
    userInterface.askBitmap = recordBitmap;
}

RecordedUi::~RecordedUi() { userInterface = userInterfaceSilent; }

}  // namespace numalink
