// The text widget of programs: Qt's own, with its clipboard and drops handed to plain functions. Graphical thread only.
#pragma once

#include <QPlainTextEdit>

namespace numalink {

class ProgramEdit : public QPlainTextEdit {
public:
    using QPlainTextEdit::QPlainTextEdit;

protected:
    QMimeData *createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
};

}  // namespace numalink
