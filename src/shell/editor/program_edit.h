// The text widget of programs: Qt's own, with its clipboard and drops handed to plain functions, and dots behind the
// lines that others are folded behind. Graphical thread only.
#pragma once

#include <QPlainTextEdit>

namespace numalink {

class ProgramEdit : public QPlainTextEdit {
public:
    using QPlainTextEdit::QPlainTextEdit;

    void reserveLeft(int pixels);  // beside the text, for a column
    // The place of the dots behind a line, in the viewport; as if it were folded.
    QRect foldedDots(const QTextBlock &block) const;

protected:
    QMimeData *createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
    void paintEvent(QPaintEvent *event) override;
};

}  // namespace numalink
