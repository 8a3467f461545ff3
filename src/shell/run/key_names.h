// The keyboard's keys, drawn over the key pad in the place of the display while their key is held. Graphical thread
// only.
#pragma once

class QKeyEvent;
class QPainter;

namespace numalink {

void makeKeyNames();  // once emulatorWindow is there
bool keyNamesShown();
void hideKeyNames();
// Held alone, the key shows what the others are; any other key ends it.
void followNamesKey(const QKeyEvent &key);
// As large as the emulator's window lets it be: in the small, names can't be read.
void paintKeyNames(QPainter &painter);

}  // namespace numalink
