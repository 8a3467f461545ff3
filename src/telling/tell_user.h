// Telling the user one of the program's texts. No caller holds a lock. Any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/files.h"
#include "telling/user_interface.h"

namespace numalink {

inline constexpr char programTitle[] = "Numalink";
inline constexpr char errorTitle[] = "Numalink Error";

// A box; the arguments stand in for the body's %d and %s.
Answer tellUser(Text body, const std::vector<std::string> &arguments = {}, BoxIcon icon = BoxIcon::warning,
                Text title = Text::warningTitle);

// The warning box; always false, so that a failure ends in one line.
bool failWith(Text body, const std::vector<std::string> &arguments = {});

// A box of a text and below it another, to which the arguments belong. It counts as a box of the first.
Answer tellMore(Text body, Text more, const std::vector<std::string> &arguments, BoxIcon icon = BoxIcon::warning);

// A box about a text whose body is made by the caller: that text with more behind it.
Answer tellComposed(Text text, const std::string &body, const std::vector<std::string> &arguments = {},
                    BoxIcon icon = BoxIcon::warning, BoxButtons buttons = BoxButtons::ok);

// A box whose title is fixed in the program; so is the body when text is none, else it is that text's.
Answer tellFixed(Text text, const std::string &body, const std::string &title, BoxIcon icon = BoxIcon::warning,
                 BoxButtons buttons = BoxButtons::ok);

// The text that tells why a file could not be read or written, to which belong its path and, where the file is too
// large, the most megabytes.
Text fileTrouble(FileResult result);

// While such an object lives, the boxes of this thread without a choice are kept back; show() shows them in order.
// For what must happen between a fault and the wait for the user's answer. What isn't shown is shown by the end.
struct HoldBoxes {
    HoldBoxes();
    ~HoldBoxes();
    HoldBoxes(const HoldBoxes &) = delete;
    HoldBoxes &operator=(const HoldBoxes &) = delete;
    void show();

    std::vector<Box> boxes;
    HoldBoxes *outer;
};

// A line in the status bar.
void statusLine(StatusPart part, Text text, const std::vector<std::string> &arguments = {});

}  // namespace numalink
