// The splash picture, which is the About box as well. Graphical thread only.
#pragma once

namespace numalink {

inline constexpr int splashMilliseconds = 2000;

void showSplash();    // closes itself after splashMilliseconds, or at a click
void showAboutBox();  // until a click, Escape or Enter

// The picture's two bands: over them the pointer is a hand, and a click opens the page or a new mail.
enum class AboutBand { none, webPage, mail };
AboutBand aboutBandAt(int x, int y);

}  // namespace numalink
