// The user interface of the command line: boxes are lines of standard error, questions are answered beforehand.
#pragma once

#include <string>

#include "telling/user_interface.h"

namespace numalink {

void terminalUiInstall();  // also forgets what was shown and the answers
int terminalBoxCount();

// Line ends and other control characters as blanks.
std::string onOneLine(std::string text);

// What the next boxes are about: a line of its own ahead of the first of them, none when there is no box.
void terminalSubject(const std::string &about);

// The answer to the next import questions; none leaves each as it is preset.
void terminalImportAnswer(ImportAction action, const std::string &folderName);

// The answer to the next bitmap questions: "image" or "sharp".
void terminalRasterAnswer(const std::string &type);

}  // namespace numalink
