#include "shell/editor/program_clipboard.h"

#include <QDataStream>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <algorithm>

#include "calculator/charset.h"
#include "settings/settings_store.h"
#include "shell/editor/program_document.h"
#include "shell/parts/main_widgets.h"
#include "telling/tell_user.h"
#include "text/lenient_text.h"
#include "text/program_bytes.h"
#include "text/token_table.h"
#include "text/view_copy.h"

namespace numalink {

namespace {

const QString linesFormat = QStringLiteral("application/x-numalink-program-lines");
constexpr quint32 linesLimit = 1u << 22;  // characters

// The full-width plus of the calculator is read back from a plain one.
constexpr char16_t calculatorPlus = u'\uFF0B';
// Parts a line where its text alone would come back as other bytes: without width, and kept by mails.
constexpr char16_t separator = u'\u200C';

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
std::vector<ViewLine> linesOfParted(const std::vector<std::string_view> &text) {
    std::vector<ViewLine> lines;
    const auto isParted = [](std::string_view line) { return line.find(pieceSeparator) != std::string_view::npos; };
    if (std::ranges::none_of(text, isParted)) return lines;
    for (std::string_view rest : text) {
        std::vector<std::string> pieces;
        for (;;) {
            const std::size_t end = std::min(rest.find(pieceSeparator), rest.size());
            int missing = 0;
            pieces.push_back(calculatorFromUtf8(rest.substr(0, end), &missing));
            if (missing > 0) return {};
            if (end == rest.size()) break;
            rest.remove_prefix(end + pieceSeparator.size());
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
std::vector<ViewLine> linesOfWords(const std::vector<std::string_view> &text) {
    std::string words;
    for (const std::string_view line : text) {
        if (&line != text.data()) words += "\r\n";
        words += line;
    }
    const auto isHigh = [](char code) { return static_cast<unsigned char>(code) >= 0x80; };
    if (std::ranges::any_of(words, isHigh)) return {};
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

// Text of any other making, read for where the caret stands.
std::vector<ViewLine> linesFromElsewhere(const std::vector<std::string_view> &text, std::string_view utf8) {
    const QTextCursor cursor = programEdit->textCursor();
    const QTextBlock block = programEdit->document()->findBlock(cursor.selectionStart());
    const ViewLine ahead = selectedPart(block, block.position(), cursor.selectionStart());
    LinePlace place{.startsLine = ahead.text.find_first_not_of(' ') == std::string::npos};
    for (const ViewToken &token : readLine(ahead, settingsInt(setting::autoCorrect) > 0).tokens)
        place.quoting.follow(token);
    LenientText lenient = lenientTextOf(utf8);
    std::vector<ViewLine> lines;
    for (const std::string_view line : text) {
        place.reachesEnd = lines.size() + 1 < text.size();
        lines.push_back(lenientLine(lenient, line, place));
        place = {};
    }
    if (lenient.blanksLeftOut) statusLine(StatusPart::item, Text::blanksLeftOut);
    return lines;
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
    const std::string utf8 = source->text().toStdString();
    const std::vector<std::string_view> text = linesOfText(utf8);
    if (lines.empty()) lines = linesOfWords(text);
    if (lines.empty()) lines = linesOfParted(text);
    if (lines.empty()) lines = linesFromElsewhere(text, utf8);
    insertLines(lines);
    programEdit->ensureCursorVisible();
}

void insertTokens(ByteView tokens) {
    Bytes image = {':'};
    image.insert(image.end(), tokens.begin(), tokens.end());
    image.push_back(0xFF);
    insertLines(viewLines(image));
    programEdit->ensureCursorVisible();
}

}  // namespace numalink
