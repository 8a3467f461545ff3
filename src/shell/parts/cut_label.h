// A label of one line whose words are cut to its width, with dots. Graphical thread only.
#pragma once

class QLabel;
class QString;

namespace numalink {

// From now on; while its text is plain. The text itself stays whole, for screen readers and for when it becomes wider.
void cutToWidth(QLabel *label);

// Words and tool tip, which tells them whole.
void setCutWords(QLabel *label, const QString &words);

}  // namespace numalink
