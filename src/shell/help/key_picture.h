// The key pad with the names of the keyboard's keys, as a picture of the manual. Graphical thread only.
#pragma once

#include <QImage>

namespace numalink {

inline constexpr char keyPictureName[] = "keypad.png";  // as the page names it; drawn when it is shown
QImage keyPicture();

}  // namespace numalink
