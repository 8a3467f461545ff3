// The four conversations, entered from the idle loop once the calculator has spoken, and ending on the way back to it.
// The link's thread.
#pragma once

namespace numalink {

void receiveFromCfx();
void receiveFromAlgebra();
void transmitToCfx();
void transmitToAlgebra();

}  // namespace numalink
