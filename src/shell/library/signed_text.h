// A read-only text with a column of signs at its left, one a line: what a line is, told by more than its colour.
// Graphical thread only.
#pragma once

#include <QPlainTextEdit>
#include <QTextBlock>

namespace numalink {

class SignedText final : public QPlainTextEdit {
public:
    SignedText();

    static void setSign(QTextBlock block, char16_t sign) { block.setUserState(sign); }  // 0: none
    static QString signOf(const QTextBlock &block);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void layOutColumn();

    QWidget *column;
};

}  // namespace numalink
