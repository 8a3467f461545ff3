// Items of the library into one file: a frame dump, or the text exchange format in one of its two forms. Whatever can't
// go out whole is told with its name ahead of any writing, and the file then stays as it was. Graphical thread only.
#pragma once

#include <string>
#include <vector>

#include "exchange/export/export_writers.h"

namespace numalink {

struct ExportJob {
    std::string path;  // in the file system's encoding
    std::vector<ItemId> ids;
    ExportTarget target = ExportTarget::none;
    bool mayReplace = false;  // an existing file is replaced without a question
};

// Asks for items, sort of file and path, and writes them. All outcome is told to the user. What was chosen the last
// time is chosen already, unless preset names others.
void exportWithQuestion(const std::vector<ItemId> &preset = {});

// False when nothing was written, which has been told. An existing file is asked about, files of the program's own
// are refused (store/care/user_files.h). Also sets the setting of the last target.
bool exportItems(const ExportJob &job);

// Each item into a file of its own, named as the item; the job's path is the folder. All are made and looked at ahead
// of the first that is written, and files that exist are asked about once. False when not all were written (told).
bool exportEach(const ExportJob &job);

// The same for items that lie in no library.
bool exportToFile(const std::vector<OutgoingItem> &items, const ExportJob &job);

}  // namespace numalink
