#include "telling/user_interface.h"

namespace numalink {

const UserInterface userInterfaceSilent = {
    .messageBox = [](const Box &) { return Answer::cancel; },
    .statusText = [](StatusPart, Text, const std::string &) {},
    .progressRange = [](int) {},
    .progressPosition = [](int) {},
    .waitCursor = [](bool) {},
    .refreshTree = [] {},
    .leaveCurrentView = [] { return true; },
    .askImport = [](ImportQuestion &question) { question.action = ImportAction::none; },
    .askArrivals = [](ArrivalsQuestion &) {},
    .askExport = [](ExportQuestion &) {},
    .askBitmap = [](BitmapQuestion &) {},
    .askItemExists = [](const std::string &) { return Answer::cancel; },
    .askPictureSlot = [](const std::string &, int) { return 0; },
    .itemReceived = [](std::uint32_t) {},
    .transmitQueueChanged = [] {},
    .displayChanged = [] {},
};

UserInterface userInterface = userInterfaceSilent;

}  // namespace numalink
