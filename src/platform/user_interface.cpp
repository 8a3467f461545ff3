#include "platform/user_interface.h"

namespace numalink {

const UserInterface userInterfaceSilent = {
    .messageBox = [](const Box &) { return Answer::cancel; },
    .statusText = [](StatusPart, int, const std::string &) {},
    .progressRange = [](int) {},
    .progressPosition = [](int) {},
    .waitCursor = [](bool) {},
    .refreshTree = [] {},
    .leaveCurrentView = [] { return true; },
    .askImport = [](ImportQuestion &question) { question.action = ImportAction::none; },
    .askExport = [](ExportQuestion &) {},
    .askBitmap = [](BitmapQuestion &) {},
    .askItemExists = [](const std::string &) { return Answer::cancel; },
    .askPictureSlot = [](int) { return 0; },
    .displayChanged = [] {},
};

UserInterface userInterface = userInterfaceSilent;

}  // namespace numalink
