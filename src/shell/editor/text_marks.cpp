#include "shell/editor/text_marks.h"

#include <QPlainTextEdit>
#include <array>

#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

std::array<QList<QTextEdit::ExtraSelection>, 3> layers;

}  // namespace

void setTextMarks(MarkLayer layer, QList<QTextEdit::ExtraSelection> marks) {
    auto &own = layers[static_cast<std::size_t>(layer)];
    if (own.isEmpty() && marks.isEmpty()) return;
    own = std::move(marks);
    QList<QTextEdit::ExtraSelection> all;
    for (const auto &each : layers) all += each;
    programEdit->setExtraSelections(all);
}

int countTextMarks(MarkLayer layer) { return static_cast<int>(layers[static_cast<std::size_t>(layer)].size()); }

void forgetTextMarks() {
    layers = {};
    if (programEdit != nullptr) programEdit->setExtraSelections({});
}

QTextEdit::ExtraSelection textMark(int from, int to, const QTextCharFormat &format) {
    QTextEdit::ExtraSelection mark;
    mark.format = format;
    mark.cursor = QTextCursor(programEdit->document());
    mark.cursor.setPosition(from);
    mark.cursor.setPosition(to, QTextCursor::KeepAnchor);
    return mark;
}

}  // namespace numalink
