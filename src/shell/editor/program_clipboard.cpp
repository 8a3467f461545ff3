#include "shell/editor/program_clipboard.h"

#include <QDataStream>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <utility>

#include "calculator/charset.h"
#include "shell/editor/program_document.h"
#include "shell/parts/main_widgets.h"
#include "text/program_bytes.h"
#include "text/token_table.h"
#include "text/view_copy.h"

namespace numalink {

namespace {

const QString linesFormat = QStringLiteral("application/x-numalink-program-lines");
constexpr quint32 linesLimit = 1u << 22;  // characters

// What other programs write for a character that the calculators have under another code point.
constexpr std::pair<char16_t, char16_t> pastedAs[] = {
    {u'\u00A0', u' '},      {u'\t', u' '},          {u'\u2018', u'\''},     {u'\u2019', u'\''},
    {u'\u201C', u'"'},      {u'\u201D', u'"'},      {u'\u2013', u'\u2212'}, {u'\u2014', u'\u2212'},
    {u'\u03BC', u'\u00B5'}, {u'\u2206', u'\u0394'}, {u'\u2211', u'\u03A3'}, {u'\u2044', u'\u2215'},
};
// The full-width plus of the calculator is read back from a plain one.
constexpr char16_t calculatorPlus = u'\uFF0B';
// Parts a line where its text alone would come back as other bytes: without width, and kept by mails.
constexpr char16_t separator = u'\u200C';

QString withKnownCharacters(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (QChar &character : text) {
        if (character == u'\r' || character == u'\u2028' || character == u'\u2029' || character == u'\f')
            character = u'\n';
        for (const auto &[from, to] : pastedAs)
            if (character == from) character = to;
    }
    return text.remove(QChar(u'\u200B')).remove(QChar(u'\uFEFF')).remove(QChar(u'\0'));
}

// A line as other programs get it: characters of the view, parted where that is needed.
QString readable(const ViewLine &line, QString text) {
    const std::vector<std::string> pieces = piecesOfLine(line);
    if (pieces.size() == 1) return text.replace(QChar(calculatorPlus), QLatin1Char('+'));
    QString parted;
    qsizetype from = 0;
    for (const std::string &piece : pieces) {
        if (from > 0) parted += QChar(separator);
        parted += QStringView(text).mid(from, static_cast<qsizetype>(piece.size()));
        from += static_cast<qsizetype>(piece.size());
    }
    return parted;
}

// Lines that were parted; nothing for text without a separator, or with what isn't of this program's making.
std::vector<ViewLine> linesOfParted(const QString &text) {
    std::vector<ViewLine> lines;
    if (!text.contains(QChar(separator))) return lines;
    for (const QString &part : text.split(QLatin1Char('\n'))) {
        std::vector<std::string> pieces;
        for (const QString &piece : part.split(QChar(separator))) {
            int missing = 0;
            pieces.push_back(calculatorFromUtf8(piece.toStdString(), &missing));
            if (missing > 0) return {};
        }
        if (!lineOfPieces(pieces, lines.emplace_back())) return {};
    }
    return lines;
}

// The part of a block that lies in the selection.
ViewLine selectedPart(const QTextBlock &block, int from, int to) {
    const ViewLine line = lineOfBlock(block);
    const auto first = static_cast<std::size_t>(std::max(0, from - block.position()));
    const auto last = std::min(line.text.size(), static_cast<std::size_t>(std::max(0, to - block.position())));
    ViewLine part;
    if (first >= last) return part;
    part.text = line.text.substr(first, last - first);
    part.origins.assign(line.origins.begin() + static_cast<std::ptrdiff_t>(first),
                        line.origins.begin() + static_cast<std::ptrdiff_t>(last));
    return part;
}

QByteArray packed(const std::vector<ViewLine> &lines) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const ViewLine &line : lines) {
        stream << static_cast<quint32>(line.text.size());
        for (std::size_t i = 0; i < line.text.size(); i++)
            stream << static_cast<quint8>(line.text[i]) << static_cast<quint32>(line.origins[i]);
    }
    return bytes;
}

// Nothing for bytes that aren't lines. What a character claims to come from is tested when it is read.
std::vector<ViewLine> unpacked(const QByteArray &bytes) {
    std::vector<ViewLine> lines;
    QDataStream stream(bytes);
    while (!stream.atEnd()) {
        quint32 size = 0;
        stream >> size;
        if (size > linesLimit) return {};
        ViewLine line;
        for (quint32 i = 0; i < size && stream.status() == QDataStream::Ok; i++) {
            quint8 code = 0;
            quint32 from = 0;
            stream >> code >> from;
            line.text += static_cast<char>(code);
            line.origins.push_back(from);
        }
        if (stream.status() != QDataStream::Ok) return {};
        lines.push_back(std::move(line));
    }
    return lines;
}

// Text of exchange words: nothing but ASCII, at least one word behind a backslash, and no character left over.
std::vector<ViewLine> linesOfWords(const QString &text) {
    if (!text.contains(QLatin1Char('\\'))) return {};
    std::string words;
    for (const QChar character : text) {
        if (character.unicode() >= 0x80) return {};
        if (character == u'\n') words += '\r';
        words += static_cast<char>(character.unicode());
    }
    bool hasWord = false;
    for (std::size_t at = words.find('\\'); at != std::string::npos; at = words.find('\\', at + 1)) {
        const TokenRecord *record = asciiToToken(std::string_view(words).substr(at));
        hasWord = hasWord || (record != nullptr && record->asciiText[0] == '\\' && record->asciiText[1] != '\0');
    }
    Bytes image = {':'};
    if (!hasWord || tokensFromWords(words, image) >= 0) return {};
    image.push_back(0xFF);
    return viewLines(image);
}

void insertLines(const std::vector<ViewLine> &lines) {
    QTextCursor cursor = programEdit->textCursor();
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    for (std::size_t i = 0; i < lines.size(); i++) {
        if (i > 0) cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
        insertLine(cursor, lines[i]);
    }
    cursor.endEditBlock();
    programEdit->setTextCursor(cursor);
}

}  // namespace

QMimeData *programSelection() {
    const QTextCursor cursor = programEdit->textCursor();
    std::vector<ViewLine> lines;
    QStringList text;
    for (QTextBlock block = cursor.document()->findBlock(cursor.selectionStart());
         block.isValid() && block.position() <= cursor.selectionEnd(); block = block.next()) {
        const int from = std::max(0, cursor.selectionStart() - block.position());
        lines.push_back(selectedPart(block, cursor.selectionStart(), cursor.selectionEnd()));
        const auto size = static_cast<qsizetype>(lines.back().text.size());
        text.push_back(readable(lines.back(), block.text().mid(from, size)));
    }
    auto *data = new QMimeData;
    data->setText(text.join(QLatin1Char('\n')));
    data->setData(linesFormat, packed(lines));
    return data;
}

bool canPasteProgram(const QMimeData *source) {
    return !programEdit->isReadOnly() && (source->hasFormat(linesFormat) || source->hasText());
}

void pasteProgram(const QMimeData *source) {
    std::vector<ViewLine> lines = unpacked(source->data(linesFormat));
    QString text = withKnownCharacters(source->text());
    if (lines.empty()) lines = linesOfWords(text);
    if (lines.empty()) lines = linesOfParted(text);
    if (!lines.empty()) {
        insertLines(lines);
        return;
    }
    QTextCursor cursor = programEdit->textCursor();
    cursor.beginEditBlock();
    cursor.insertText(text.remove(QChar(separator)), QTextCharFormat());
    cursor.endEditBlock();
    programEdit->ensureCursorVisible();
}

}  // namespace numalink
