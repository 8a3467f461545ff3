// The question where a file is to be written. Graphical thread only.
#pragma once

#include <QString>

#include "telling/texts.h"

namespace numalink {

// A path with this ending ("bmp"), with the name to start from, or nothing when cancelled. An existing file is asked
// about when it is written.
QString askSavePath(Text filter, const QString &ending, const QString &name);

}  // namespace numalink
