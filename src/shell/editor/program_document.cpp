#include "shell/editor/program_document.h"

#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextLayout>
#include <array>

#include "calculator/charset.h"
#include "settings/settings_store.h"
#include "shell/parts/color_contrast.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/program_colors.h"

namespace numalink {

namespace {

constexpr int originProperty = QTextFormat::UserProperty + 1;
constexpr std::size_t noCode = 0;

// The line as it was opened or last stored, all its tokens untouched.
struct LineMemory : QTextBlockUserData {
    QString text;
    ViewLine line;
};

// The looks that readColors took from the settings and the palette.
struct Looks {
    bool highlighting = false;
    std::array<QColor, runClassCount> colors;
};
Looks state;

QTextCharFormat formatOf(CodeOrigin from) {
    QTextCharFormat format;
    if (from != origin::typed) format.setProperty(originProperty, from);
    return format;
}

void appendCharacter(ViewLine &line, char32_t character, CodeOrigin from) {
    const std::optional<std::uint8_t> code = charsetFromUnicode(character);
    line.text += static_cast<char>(code.value_or(noCode));
    line.origins.push_back(code ? from : origin::foreign | character);
}

// A character beyond the 16 bits of Qt's takes two places: the whole of it at the first, the rest of a pair at the
// second.
char32_t characterOf(const QString &text, qsizetype place) {
    const QChar character = text[place];
    const bool isPair = character.isHighSurrogate() && place + 1 < text.size() && text[place + 1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(character, text[place + 1]) : character.unicode();
}

// As it came in; nothing for the second place of a pair.
QString foreignText(char32_t character) {
    std::string text;
    const bool isRestOfPair = character >= 0xDC00 && character <= 0xDFFF;
    const bool endsLine = character < ' ' || character == U'\u2028' || character == U'\u2029';
    if (!isRestOfPair) appendUtf8(text, endsLine ? U'\uFFFD' : character);
    return QString::fromStdString(text);
}

const LineMemory *memoryOf(const QTextBlock &block) {
    const auto *memory = static_cast<const LineMemory *>(block.userData());
    return memory != nullptr && memory->text == block.text() ? memory : nullptr;
}

// Replaces what differs between a line and what it is to show, and no more: the untouched characters keep their
// origins, and the caret its place among them.
void replaceDifference(const QTextBlock &block, const ViewLine &line, const ViewLine &shown) {
    const std::size_t shorter = std::min(line.text.size(), shown.text.size());
    std::size_t ahead = 0;
    while (ahead < shorter && line.text[ahead] == shown.text[ahead]) ahead++;
    std::size_t behind = 0;
    while (behind < shorter - ahead &&
           line.text[line.text.size() - behind - 1] == shown.text[shown.text.size() - behind - 1])
        behind++;
    ViewLine middle;
    middle.text = shown.text.substr(ahead, shown.text.size() - ahead - behind);
    middle.origins.assign(shown.origins.begin() + static_cast<std::ptrdiff_t>(ahead),
                          shown.origins.end() - static_cast<std::ptrdiff_t>(behind));
    QTextCursor cursor(block);
    // One step with the key that led to it: undo takes back both.
    cursor.joinPreviousEditBlock();
    cursor.setPosition(block.position() + static_cast<int>(ahead));
    cursor.setPosition(block.position() + static_cast<int>(line.text.size() - behind), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    insertLine(cursor, middle);
    cursor.endEditBlock();
}

// A place in a block, kept by its distance from the block's end.
int placeBehind(const QTextBlock &block, int distance) {
    return block.position() + std::max(0, block.length() - 1 - distance);
}

}  // namespace

QString qtFromCodes(std::string_view codes) {
    QString text(static_cast<qsizetype>(codes.size()), Qt::Uninitialized);
    for (std::size_t i = 0; i < codes.size(); i++)
        text[static_cast<qsizetype>(i)] =
            QChar(static_cast<char16_t>(charsetToUnicode(static_cast<std::uint8_t>(codes[i]))));
    return text;
}

ViewLine lineOfBlock(const QTextBlock &block) {
    ViewLine line;
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        const CodeOrigin from = fragment.charFormat().property(originProperty).toUInt();
        const QString text = fragment.text();
        for (qsizetype i = 0; i < text.size(); i++) appendCharacter(line, characterOf(text, i), from);
    }
    return line;
}

void insertLine(QTextCursor &cursor, const ViewLine &line) {
    for (std::size_t from = 0; from < line.text.size();) {
        std::size_t to = from + 1;
        while (to < line.text.size() && line.origins[to] == line.origins[from]) to++;
        if (isForeign(line.origins[from])) {
            for (std::size_t i = from; i < to; i++) cursor.insertText(foreignText(characterAt(line, i)), {});
        } else {
            cursor.insertText(qtFromCodes(std::string_view(line.text).substr(from, to - from)),
                              formatOf(line.origins[from]));
        }
        from = to;
    }
}

LineReading readBlock(const QTextBlock &block, ViewLine &line) {
    const LineMemory *memory = memoryOf(block);
    line = memory != nullptr ? memory->line : lineOfBlock(block);
    return readLine(line, settingsInt(setting::autoCorrect) > 0);
}

void rememberLine(QTextBlock block, const ViewLine &line) {
    auto *memory = new LineMemory;
    memory->text = block.text();
    memory->line = line;
    block.setUserData(memory);
}

void convertBlock(const QTextBlock &block) {
    if (memoryOf(block) != nullptr) return;
    const ViewLine line = lineOfBlock(block);
    const LineReading reading = readLine(line, settingsInt(setting::autoCorrect) > 0);
    const ViewLine shown = shownLine(line, reading);
    if (shown.text == line.text) return;
    const QTextCursor caret = programEdit->textCursor();
    const int end = block.position() + block.length() - 1;
    const bool holdsCaret = caret.position() >= block.position() && caret.position() <= end;
    const int distance = end - caret.position();
    replaceDifference(block, line, shown);
    if (!holdsCaret) return;
    QTextCursor back = programEdit->textCursor();
    back.setPosition(placeBehind(block, distance));
    programEdit->setTextCursor(back);
}

void readColors() {
    state.highlighting = settingsInt(setting::syntaxHighlighting) == 1;
    // On the ground of texts, and on that of what is marked in it, which is the harder one.
    const QPalette &palette = programEdit->palette();
    for (std::size_t i = 0; i < state.colors.size(); i++) {
        state.colors[i] =
            readableOn(ownColor(OwnColor::partners, palette),
                       readableOn(palette.color(QPalette::Base), qtColor(settingsColour(programColorKeys[i]))));
    }
}

void forgetColors() { state = {}; }

void colorBlock(const QTextBlock &block) {
    QList<QTextLayout::FormatRange> ranges;
    if (state.highlighting) {
        ViewLine line;
        const LineReading reading = readBlock(block, line);
        for (const ColorRun &run : colorRuns(line, reading)) {
            QTextLayout::FormatRange range;
            range.start = static_cast<int>(run.from);
            range.length = static_cast<int>(run.size);
            range.format.setForeground(state.colors[static_cast<std::size_t>(run.runClass)]);
            ranges.append(range);
        }
    }
    QTextLayout *layout = block.layout();
    if (layout->formats() == ranges) return;
    layout->setFormats(ranges);
    programEdit->document()->markContentsDirty(block.position(), block.length());
}

void colorDocument() {
    for (QTextBlock block = programEdit->document()->begin(); block.isValid(); block = block.next()) colorBlock(block);
}

}  // namespace numalink
