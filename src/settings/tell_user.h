// Telling the user by text number. No caller holds a lock. Any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/user_interface.h"

namespace numalink {

inline constexpr int titleOfWarnings = 2;
inline constexpr char programTitle[] = "Numalink";
inline constexpr char errorTitle[] = "Numalink Error";

// A box whose body and title are language texts, with title text 2 unless told; arguments stand in for %d and %s.
Answer tellUser(int bodyNumber, const std::vector<std::string> &arguments = {}, BoxIcon icon = BoxIcon::warning,
                int titleNumber = titleOfWarnings);

// The warning box for a text number; always false, so that a failure ends in one line.
bool failWith(int bodyNumber, const std::vector<std::string> &arguments = {});

// The box for one of our own texts (languageItem), title text 2; always false.
bool failWithItem(int number, int index, const std::vector<std::string> &arguments = {});

// A box whose title, and body when bodyNumber is 0, are fixed in the program.
Answer tellFixed(int bodyNumber, const std::string &body, const std::string &title, BoxIcon icon = BoxIcon::warning,
                 BoxButtons buttons = BoxButtons::ok);

// A line in the status bar by text number.
void statusLine(StatusPart part, int textNumber, const std::vector<std::string> &arguments = {});

}  // namespace numalink
