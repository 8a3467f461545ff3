// Marks on the text on view, in layers that know nothing of each other: later ones lie over earlier ones. Graphical
// thread only.
#pragma once

#include <QTextEdit>

namespace numalink {

enum class MarkLayer { problems, partners, statements };
void setTextMarks(MarkLayer layer, QList<QTextEdit::ExtraSelection> marks);
int countTextMarks(MarkLayer layer);
void forgetTextMarks();  // of a document that goes

// A stretch of the document in a format.
QTextEdit::ExtraSelection textMark(int from, int to, const QTextCharFormat &format);

}  // namespace numalink
