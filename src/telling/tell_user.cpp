#include "telling/tell_user.h"

#include "telling/language_table.h"

namespace numalink {

namespace {

Box boxOf(int bodyNumber, std::string body, const std::vector<std::string> &arguments, BoxIcon icon, int titleNumber) {
    Box box;
    box.bodyNumber = bodyNumber;
    box.titleNumber = titleNumber;
    box.body = std::move(body);
    box.title = languageText(titleNumber);
    box.icon = icon;
    box.arguments = arguments;
    return box;
}

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

Answer tellUser(int bodyNumber, const std::vector<std::string> &arguments, BoxIcon icon, int titleNumber) {
    return showOrHold(boxOf(bodyNumber, languageFormat(bodyNumber, arguments), arguments, icon, titleNumber));
}

Answer tellUser(OwnText body, const std::vector<std::string> &arguments, BoxIcon icon) {
    return showOrHold(boxOf(ownTextNumber(body), ownText(body, arguments), arguments, icon, titleOfWarnings));
}

Answer tellMore(int bodyNumber, OwnText more, const std::vector<std::string> &arguments, BoxIcon icon) {
    const std::string body = languageText(bodyNumber) + "\n" + ownText(more, arguments);
    return showOrHold(boxOf(bodyNumber, body, arguments, icon, titleOfWarnings));
}

bool failWith(int bodyNumber, const std::vector<std::string> &arguments) {
    tellUser(bodyNumber, arguments);
    return false;
}

bool failWith(OwnText body, const std::vector<std::string> &arguments) {
    tellUser(body, arguments);
    return false;
}

Answer tellFixed(int bodyNumber, const std::string &body, const std::string &title, BoxIcon icon, BoxButtons buttons) {
    Box box;
    box.bodyNumber = bodyNumber;
    box.body = bodyNumber == 0 ? body : languageText(bodyNumber);
    box.title = title;
    box.icon = icon;
    box.buttons = buttons;
    return showOrHold(box);
}

void statusLine(StatusPart part, int textNumber, const std::vector<std::string> &arguments) {
    userInterface.statusText(part, textNumber, languageFormat(textNumber, arguments));
}

void statusLine(StatusPart part, OwnText text, const std::vector<std::string> &arguments) {
    userInterface.statusText(part, ownTextNumber(text), ownText(text, arguments));
}

}  // namespace numalink
