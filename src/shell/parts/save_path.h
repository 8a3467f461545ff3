// The question where a file is to be written. Graphical thread only.
#pragma once

#include <QString>
#include <vector>

#include "telling/texts.h"

namespace numalink {

struct SaveForm {
    Text filter = Text::none;
    const char *ending = "";  // "bmp"
};

// A path with the ending of one of the forms, with the name to start from, or nothing when cancelled. An existing file
// is asked about when it is written.
QString askSavePath(const std::vector<SaveForm> &forms, const QString &name);
QString askSavePath(Text filter, const QString &ending, const QString &name);

}  // namespace numalink
