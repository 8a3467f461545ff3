// The part of the settings dialog that chooses the eight colours, with a program that shows them at once. Graphical
// thread only.
#pragma once

class QWidget;

namespace numalink {

// With highlighting switched on while all colours are black: asks which scheme they shall take.
void offerSchemeForBlack();

QWidget *makeColorSwatches();  // from the settings; one at a time
void storeSwatches();          // into the settings
void forgetSwatches();

}  // namespace numalink
