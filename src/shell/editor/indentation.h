// Lines stand to the right by the blocks that they are in: the layout does it, and the text knows nothing of it, so
// that what is copied, stored and undone is as it was. Graphical thread only.
#pragma once

#include <QPlainTextDocumentLayout>

namespace numalink {

struct ProgramReading;

class IndentedLayout : public QPlainTextDocumentLayout {
public:
    using QPlainTextDocumentLayout::QPlainTextDocumentLayout;
    QRectF blockBoundingRect(const QTextBlock &block) const override;
    QSizeF documentSize() const override;
    int deepestLine = 0;  // levels
};

void indentLines(const ProgramReading &reading);  // of the document on view, by the setting
bool linesAreIndented();
void toggleIndentation();

}  // namespace numalink
