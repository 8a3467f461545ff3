// The user interface of the command line: boxes are lines of standard error, questions are answered beforehand.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "telling/user_interface.h"

namespace numalink {

void terminalUiInstall();  // also forgets what was shown and the answers
int terminalBoxCount();

// With a blank in the place of each control character: of ASCII's, and of U+0080 to U+009F.
std::string onOneLine(const std::string &text);
// A name in calculator codes as a terminal may have it: in UTF-8 and without control characters.
std::string printableName(std::string_view name);

// What the next boxes are about: a line of its own ahead of the first of them, none when there is no box.
void terminalSubject(const std::string &about);

// The answer to the next import questions; none leaves each as it is preset.
void terminalImportAnswer(ImportAction action, const std::string &folderName);

// What is done with imported items whose names are taken: both are kept unless told otherwise.
void terminalArrivalChoice(std::optional<ArrivalChoice> choice);
// From now on what would come in is listed, and nothing comes in.
void terminalOnlyLists();

// The answer to the next bitmap questions: "image" or "sharp".
void terminalRasterAnswer(const std::string &type);

}  // namespace numalink
