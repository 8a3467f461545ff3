// A user interface for tests: keeps what was shown as a list of lines and gives the answers that a test has put in.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "telling/user_interface.h"

namespace numalink {

struct UiRecord {
    std::vector<std::string> lines;  // "box 33 / 2", "status 1: Receiving...", "tree", "import SNAKE,TETRIS"
    std::vector<Box> boxes;
    std::deque<Answer> answers;  // taken from the front, "cancel" when empty
    bool leaveAllowed = true;
    ImportAction importAction = ImportAction::none;                        // the answer to the import question
    std::string importFolder;                                              // typed into it unless empty
    ImportQuestion lastQuestion;                                           // as it was asked
    std::vector<ArrivalRow> arrivals;                                      // as they were listed, of all lists
    std::vector<std::string> notes;                                        // of the last list
    std::optional<ArrivalChoice> arrivalChoice = ArrivalChoice::keepBoth;  // for all that aren't new; none: as preset
    bool arrivalsAccepted = true;
    std::function<void()> whileListed;
    std::function<void(ImportQuestion &)> answerImport;  // in the place of action and folder
    bool bitmapAccepted = false;                         // the answer to the bitmap question
    RasterType bitmapType = RasterType::image;
    BitmapQuestion lastBitmap;  // as it was asked
};

extern UiRecord uiRecord;

// Puts the recorder in place, with an empty record, for the life of the object.
struct RecordedUi {
    RecordedUi();
    ~RecordedUi();
    RecordedUi(const RecordedUi &) = delete;
    RecordedUi &operator=(const RecordedUi &) = delete;
};

}  // namespace numalink
