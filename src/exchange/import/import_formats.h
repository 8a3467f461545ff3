// The kinds of files that are imported: what choosing a reader, the file dialog and the command line's help go by.
#pragma once

#include <span>
#include <string>

#include "exchange/import/import_readers.h"

namespace numalink {

struct ImportFormat {
    const char *name;
    std::span<const char *const> endings;  // in lower case, without the dot
    bool (*fits)(ByteView &file);          // by its first bytes; takes an editor's byte order mark off
    ItemReader read;                       // null for pictures, whose raster is asked for
};

std::span<const ImportFormat> importFormats();
std::string importFormatNames();                     // "cas, cat, fxi, bitmap"
const ImportFormat *importFormatOf(ByteView &file);  // null for a file of no known kind

}  // namespace numalink
