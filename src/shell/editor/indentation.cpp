#include "shell/editor/indentation.h"

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextLayout>

#include "settings/settings_store.h"
#include "shell/editor/block_memory.h"
#include "shell/editor/program_reading.h"
#include "shell/parts/command_states.h"
#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

constexpr int deepest = 12;         // levels; deeper lines stand as those
constexpr int lettersPerLevel = 2;  // widths of a letter

qreal levelWidth(const QTextDocument *document) {
    return QFontMetricsF(document->defaultFont()).averageCharWidth() * lettersPerLevel;
}

qreal indentOf(const QTextBlock &block) {
    return std::min(blockMemory(block).depth, deepest) * levelWidth(block.document());
}

}  // namespace

QRectF IndentedLayout::blockBoundingRect(const QTextBlock &block) const {
    QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
    if (!block.isValid() || !block.isVisible() || block.layout() == nullptr) return rect;
    const qreal left = document()->documentMargin() + indentOf(block);
    const QTextLayout *layout = block.layout();
    for (int i = 0; i < layout->lineCount(); i++) {
        QTextLine line = layout->lineAt(i);
        if (line.x() != left) line.setPosition(QPointF(left, line.y()));
    }
    rect.setWidth(rect.width() + indentOf(block));
    return rect;
}

QSizeF IndentedLayout::documentSize() const {
    QSizeF size = QPlainTextDocumentLayout::documentSize();
    size.rwidth() += std::min(deepestLine, deepest) * levelWidth(document());
    return size;
}

void indentLines(const ProgramReading &reading) {
    QTextDocument *document = programEdit->document();
    const bool isOn = linesAreIndented();
    auto *layout = static_cast<IndentedLayout *>(document->documentLayout());
    layout->deepestLine = 0;
    const std::vector<int> depths = isOn ? depthOfLines(reading.structure) : std::vector<int>();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        const auto number = static_cast<std::size_t>(block.blockNumber());
        const bool isKnown = isOn && number < reading.text.lines.size();
        const std::size_t line = isKnown ? lineOf(reading.structure, reading.text.lines[number].at) : 0;
        const int depth = isKnown && line < depths.size() ? depths[line] : 0;
        layout->deepestLine = std::max(layout->deepestLine, depth);
        BlockMemory memory = blockMemory(block);
        if (memory.depth == depth) continue;
        memory.depth = depth;
        setBlockMemory(block, memory);
        document->markContentsDirty(block.position(), block.length());
    }
}

bool linesAreIndented() { return settingsInt(setting::indentLines) != 0; }

void toggleIndentation() {
    settingsSetInt(setting::indentLines, linesAreIndented() ? 0 : 1);
    settingsSave();
    indentLines(programReading());
    programEdit->viewport()->update();
    commandStatesChanged();
}

}  // namespace numalink
