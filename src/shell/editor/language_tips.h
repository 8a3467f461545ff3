// What the editor tells of a token: under the pointer, of the command whose arguments are being written, and which
// parts of a block or which parentheses belong together. Graphical thread only.
#pragma once

class QHelpEvent;

namespace numalink {

bool showTokenTip(const QHelpEvent &event);  // of the viewport
void markPartners();                         // of what the caret stands at
void showSignature();                        // of the command at the caret, or takes it away where there is none
void hideSignature();
bool signatureShown();
void forgetLanguageTips();

}  // namespace numalink
