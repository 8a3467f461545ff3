// What the link asks: may an item on the calculator be replaced, and which picture slot. Any thread.
#pragma once

#include <string>

#include "telling/user_interface.h"

namespace numalink {

Answer askItemExists(const std::string &question);
int askPictureSlot(const std::string &pictureName, int preset);  // 1 to 6, or 0 when closed

}  // namespace numalink
