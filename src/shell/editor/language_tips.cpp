#include "shell/editor/language_tips.h"

#include <QHelpEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QToolTip>

#include "language/completion.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_reading.h"
#include "shell/editor/symbols_window.h"
#include "shell/editor/text_marks.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int labelMargin = 3;  // pixels

QLabel *signatureLabel = nullptr;  // the viewport's

QString escaped(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())).toHtmlEscaped();
}

QString hexOf(TokenCode token) {
    return QString::number(token, 16).toUpper().rightJustified(token > 0xFF ? 4 : 2, QLatin1Char('0'));
}

// Its syntax, its bytes, its meaning and the keys that give it.
QString tipOf(const ReferenceRow &row) {
    return QStringLiteral("<p style='white-space:pre'><b>%1</b>&nbsp;&nbsp;<code>%2</code></p><p>%3</p><p>%4</p>")
        .arg(escaped(row.syntax), hexOf(row.code), escaped(referenceMeaning(row)),
             textOf(Text::tokenKeys, {referenceKeys(row)}).toHtmlEscaped());
}

// Of problems at a place, a line each.
QString problemsAt(std::size_t at) {
    QString text;
    for (const Problem &problem : problemsOnView())
        if (at >= problem.at && at < problem.at + problem.length)
            text += QStringLiteral("<p>%1</p>").arg(toQt(problemText(problem)).toHtmlEscaped());
    return text;
}

// Beside the line of the caret, and left of the symbols where these would cover it.
QPoint placeOfSignature(const QSize &size) {
    const QWidget *viewport = programEdit->viewport();
    const QRect caret = programEdit->cursorRect();
    const int above = caret.top() - size.height();
    QPoint place(std::min(caret.left(), viewport->width() - size.width()), above >= 0 ? above : caret.bottom() + 1);
    const QRect symbols = symbolsPlace().translated(-viewport->mapToGlobal(QPoint(0, 0)));
    if (symbols.intersects(QRect(place, size))) place.setX(std::min(place.x(), symbols.left() - size.width()));
    place.setX(std::max(0, place.x()));
    return place;
}

int placeInBlock(const QTextCursor &cursor) { return cursor.positionInBlock(); }

}  // namespace

bool showTokenTip(const QHelpEvent &event) {
    const QTextCursor cursor = programEdit->cursorForPosition(event.pos());
    const QRect letter = programEdit->cursorRect(cursor);
    const ProgramReading &reading = programReading();
    // The cursor is the one nearest to the pointer: of a letter's right half it is the one behind it.
    const int position = cursor.position() - (event.pos().x() < letter.left() && placeInBlock(cursor) > 0 ? 1 : 0);
    const bool isOnText =
        position < cursor.block().position() + cursor.block().length() - 1 && event.pos().y() <= letter.bottom();
    const std::size_t token = isOnText ? tokenAt(reading.structure, byteAtPosition(reading, position)) : noToken;
    if (token == noToken) {
        QToolTip::hideText();
        return true;
    }
    const ProgramToken &own = reading.structure.tokens[token];
    QString text = problemsAt(own.at);
    const ReferenceRow *row = own.role == TokenRole::code ? referenceOf(own.code) : nullptr;
    if (row != nullptr) text += tipOf(*row);
    QToolTip::showText(event.globalPos(), text, programEdit->viewport());
    return true;
}

void markPartners() {
    const ProgramReading &reading = programReadingBefore();
    const int position = programEdit->textCursor().position();
    QList<QTextEdit::ExtraSelection> marks;
    QTextCharFormat format;
    format.setBackground(ownColor(OwnColor::partners, programEdit->palette()));
    format.setUnderlineStyle(QTextCharFormat::SingleUnderline);  // the ground alone is faint
    const std::size_t at = byteAtPosition(reading, position);
    // The token behind the caret, else the one ahead of it.
    std::size_t token = tokenAt(reading.structure, at);
    std::vector<std::size_t> together = togetherWith(reading.structure, token);
    if (together.empty() && at > 1) together = togetherWith(reading.structure, tokenAt(reading.structure, at - 1));
    for (const std::size_t each : together) {
        const TextStretch stretch = stretchOfTokens(reading, each, 1);
        marks << textMark(stretch.from, stretch.to, format);
    }
    setTextMarks(MarkLayer::partners, std::move(marks));
}

void showSignature() {
    // A statement ends with its line at the latest: nothing else is read.
    const QTextCursor cursor = programEdit->textCursor();
    ViewLine shown;
    LineReading read = readBlock(cursor.block(), shown);
    std::vector<TextLine> lines;
    appendLine(lines, shown.text.size(), std::move(read));
    const ProgramText text = programText(std::move(lines));
    const ProgramStructure line = structureOf(text.image);
    const std::size_t at = byteOfPlace(text, {0, static_cast<std::size_t>(cursor.positionInBlock())});
    std::size_t token = tokenAt(line, at);
    const bool isRemark = token != noToken && line.tokens[token].role == TokenRole::remark;
    if (token == noToken) token = line.tokens.size();
    const auto signature = isRemark ? std::nullopt : signatureAt(line, token);
    if (!signature) return hideSignature();
    if (signatureLabel == nullptr) {
        signatureLabel = new QLabel(programEdit->viewport());
        signatureLabel->setObjectName(QStringLiteral("signatureLabel"));
        signatureLabel->setAutoFillBackground(true);
        signatureLabel->setMargin(labelMargin);
        signatureLabel->setFrameShape(QFrame::Box);
        signatureLabel->setTextFormat(Qt::RichText);
    }
    signatureLabel->setPalette(QToolTip::palette());
    signatureLabel->setFont(QToolTip::font());  // the program's face has no bold letters
    signatureLabel->setBackgroundRole(QPalette::ToolTipBase);
    signatureLabel->setForegroundRole(QPalette::ToolTipText);
    const std::string_view syntax = signature->syntax;
    const std::size_t behind = signature->from + signature->length;
    signatureLabel->setText(QStringLiteral("%1<b>%2</b>%3")
                                .arg(escaped(syntax.substr(0, signature->from)),
                                     escaped(syntax.substr(signature->from, signature->length)),
                                     escaped(syntax.substr(behind))));
    signatureLabel->adjustSize();
    signatureLabel->move(placeOfSignature(signatureLabel->size()));
    signatureLabel->show();
}

void hideSignature() {
    if (signatureLabel != nullptr) signatureLabel->hide();
}

bool signatureShown() { return signatureLabel != nullptr && signatureLabel->isVisible(); }

void forgetLanguageTips() { signatureLabel = nullptr; }

}  // namespace numalink
