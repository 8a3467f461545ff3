#include "telling/tell_user.h"

#include <algorithm>

namespace numalink {

namespace {

Box boxOf(Text text, std::string body, const std::vector<std::string> &arguments, BoxIcon icon, Text title) {
    return {.bodyText = text,
            .titleText = title,
            .body = std::move(body),
            .title = wording(title),
            .icon = icon,
            .buttons = BoxButtons::ok,
            .arguments = arguments};
}

struct TroubleRow {
    FileResult result;
    Text text;
};
constexpr TroubleRow troubleRows[] = {
    {FileResult::missing, Text::fileMissing},   {FileResult::denied, Text::fileDenied},
    {FileResult::isFolder, Text::fileIsFolder}, {FileResult::noFile, Text::fileNoFile},
    {FileResult::tooLarge, Text::fileTooLarge}, {FileResult::diskFull, Text::fileDiskFull},
};

thread_local HoldBoxes *holder = nullptr;

Answer showOrHold(const Box &box) {
    if (holder == nullptr || box.buttons != BoxButtons::ok) return userInterface.messageBox(box);
    holder->boxes.push_back(box);
    return Answer::ok;
}

}  // namespace

HoldBoxes::HoldBoxes() : outer(holder) { holder = this; }

HoldBoxes::~HoldBoxes() {
    holder = outer;
    show();
}

void HoldBoxes::show() {
    const std::vector<Box> shown = std::move(boxes);
    boxes.clear();
    for (const Box &box : shown) userInterface.messageBox(box);
}

Answer tellUser(Text body, const std::vector<std::string> &arguments, BoxIcon icon, Text title) {
    return showOrHold(boxOf(body, wording(body, arguments), arguments, icon, title));
}

bool failWith(Text body, const std::vector<std::string> &arguments) {
    tellUser(body, arguments);
    return false;
}

Answer tellMore(Text body, Text more, const std::vector<std::string> &arguments, BoxIcon icon) {
    return tellComposed(body, wording(body) + "\n" + wording(more, arguments), arguments, icon);
}

Answer tellComposed(Text text, const std::string &body, const std::vector<std::string> &arguments, BoxIcon icon,
                    BoxButtons buttons) {
    Box box = boxOf(text, body, arguments, icon, Text::warningTitle);
    box.buttons = buttons;
    return showOrHold(box);
}

Answer tellFixed(Text text, const std::string &body, const std::string &title, BoxIcon icon, BoxButtons buttons) {
    return showOrHold({.bodyText = text,
                       .titleText = Text::none,
                       .body = text == Text::none ? body : wording(text),
                       .title = title,
                       .icon = icon,
                       .buttons = buttons,
                       .arguments = {}});
}

Text fileTrouble(FileResult result) {
    const auto *const row = std::ranges::find(troubleRows, result, &TroubleRow::result);
    return row == std::end(troubleRows) ? Text::fileFailed : row->text;
}

void statusLine(StatusPart part, Text text, const std::vector<std::string> &arguments) {
    userInterface.statusText(part, text, wording(text, arguments));
}

}  // namespace numalink
