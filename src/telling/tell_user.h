// Telling the user by text number. No caller holds a lock. Any thread.
#pragma once

#include <string>
#include <vector>

#include "telling/own_texts.h"
#include "telling/user_interface.h"

namespace numalink {

inline constexpr int titleOfWarnings = 2;
inline constexpr char programTitle[] = "Numalink";
inline constexpr char errorTitle[] = "Numalink Error";

// A box whose body and title are language texts, with title text 2 unless told; arguments stand in for %d and %s.
Answer tellUser(int bodyNumber, const std::vector<std::string> &arguments = {}, BoxIcon icon = BoxIcon::warning,
                int titleNumber = titleOfWarnings);

// The warning box for a text number; always false, so that a failure ends in one line.
bool failWith(int bodyNumber, const std::vector<std::string> &arguments = {});

// The same for a text of our own; the box's body number is the shared number.
Answer tellUser(OwnText body, const std::vector<std::string> &arguments = {}, BoxIcon icon = BoxIcon::warning);
bool failWith(OwnText body, const std::vector<std::string> &arguments = {});

// A language text and below it a text of our own, to which the arguments belong. The body number is the language
// text's.
Answer tellMore(int bodyNumber, OwnText more, const std::vector<std::string> &arguments,
                BoxIcon icon = BoxIcon::warning);

// A box whose title, and body when bodyNumber is 0, are fixed in the program.
Answer tellFixed(int bodyNumber, const std::string &body, const std::string &title, BoxIcon icon = BoxIcon::warning,
                 BoxButtons buttons = BoxButtons::ok);

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

// A line in the status bar by text number.
void statusLine(StatusPart part, int textNumber, const std::vector<std::string> &arguments = {});
void statusLine(StatusPart part, OwnText text, const std::vector<std::string> &arguments = {});

}  // namespace numalink
