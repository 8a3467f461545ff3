#include "shell/help/reference_page.h"

#include <QStringList>
#include <algorithm>

#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "text/program_bytes.h"
#include "text/token_table.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

struct TopicRow {
    std::string_view topic;
    Text text;
};
// In the order in which they are learned.
constexpr TopicRow topicRows[] = {
    {"Program flow", Text::topicFlow},
    {"Input and output", Text::topicInput},
    {"Comparisons and logic", Text::topicLogic},
    {"Values and variables", Text::topicValues},
    {"Variables and letters", Text::topicLetters},
    {"Small letters", Text::topicSmallLetters},
    {"Digits", Text::topicDigits},
    {"Characters", Text::topicCharacters},
    {"Arithmetic", Text::topicArithmetic},
    {"Angles and trigonometry", Text::topicAngles},
    {"Complex numbers", Text::topicComplex},
    {"Number bases", Text::topicBases},
    {"Engineering letters", Text::topicEngineering},
    {"Display of numbers", Text::topicDisplay},
    {"Calculus", Text::topicCalculus},
    {"Equations", Text::topicEquations},
    {"Money", Text::topicMoney},
    {"Lists", Text::topicLists},
    {"Matrices", Text::topicMatrices},
    {"Statistics", Text::topicStatistics},
    {"Statistical graphs", Text::topicStatGraphs},
    {"Results of statistical tests", Text::topicStatTests},
    {"Graphs", Text::topicGraphs},
    {"Set-up of graphs", Text::topicGraphSetUp},
    {"View window", Text::topicViewWindow},
    {"Drawing", Text::topicDrawing},
    {"Dynamic graphs", Text::topicDynamic},
    {"Tables", Text::topicTables},
    {"Recursion", Text::topicRecursion},
};

QString fromView(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

// The words of item files as a program shows them.
QString asShown(std::string_view words) {
    Bytes image = {':'};
    if (tokensFromWords(words, image) >= 0) return fromView(words);
    image.push_back(0xFF);
    QStringList lines;
    for (const ViewLine &line : viewLines(image)) lines << nameToQt(line.text);
    return lines.join(QLatin1Char('\n'));
}

QString wordOf(const ReferenceRow &row) {
    int length = 0;
    const Bytes bytes = bytesOfToken(row.code);
    return fromView(tokenToAscii(bytes, length).value_or(std::string_view()));
}

Text stateText(ReferenceState state) {
    switch (state) {
        case ReferenceState::differs:
            return Text::referenceDiffers;
        case ReferenceState::nothingToDo:
            return Text::referenceNothing;
        default:
            return Text::referenceSame;
    }
}

QString codeOf(const QString &text) {
    QString html = text.toHtmlEscaped();
    html.replace(QLatin1Char('\n'), QLatin1String("<br>"));
    return QStringLiteral("<span style=\"font-family:'Numalink Screen'; font-size:%1px\">").arg(grownWhole(16)) + html +
           QLatin1String("</span>");
}

QString part(Text title, const QString &html) {
    if (html.isEmpty()) return {};
    return QStringLiteral("<p><b>%1</b><br>%2</p>").arg(textOf(title).toHtmlEscaped(), html);
}

}  // namespace

std::vector<std::string_view> topicsInOrder() {
    std::vector<std::string_view> topics;
    for (const TopicRow &row : topicRows) topics.push_back(row.topic);
    for (const std::string_view topic : referenceTopics())
        if (std::ranges::find(topics, topic) == topics.end()) topics.push_back(topic);
    return topics;
}

QString nameInList(const ReferenceRow &row) {
    QString name = fromView(row.name).trimmed();
    if (!name.isEmpty()) return name;
    return QStringLiteral("\\@%1").arg(row.code, 2, 16, QLatin1Char('0')).toUpper();  // a blank, and the byte 0
}

QString topicInWords(std::string_view topic) {
    const auto *found = std::ranges::find(topicRows, topic, &TopicRow::topic);
    return found == std::end(topicRows) ? fromView(topic) : textOf(found->text);
}

QString pageOfToken(const ReferenceRow &row) {
    QString example = codeOf(asShown(row.example));
    if (!row.gives.empty()) example += QStringLiteral(" &nbsp; \u21E2 ") + fromView(row.gives).toHtmlEscaped();
    QString state = textOf(stateText(row.state)).toHtmlEscaped();
    const std::string_view remark = referenceRemark(row);
    if (!remark.empty()) state += QStringLiteral("<br>") + fromView(remark).toHtmlEscaped();
    return QStringLiteral("<h2>%1</h2><p>%2</p>")
               .arg(codeOf(fromView(row.name)), fromView(referenceMeaning(row)).toHtmlEscaped()) +
           part(Text::referenceSyntax, codeOf(fromView(row.syntax))) +
           part(Text::referenceExample, row.example.empty() ? QString() : example) +
           part(Text::referenceKeys, fromView(referenceKeys(row)).toHtmlEscaped()) + part(Text::referenceState, state) +
           part(Text::referenceWord, wordOf(row).toHtmlEscaped()) +
           part(Text::referenceTopic, topicInWords(row.topic).toHtmlEscaped());
}

bool tokenHolds(const ReferenceRow &row, const QStringList &wanted) {
    return std::ranges::all_of(wanted, [&](const QString &word) {
        return fromView(row.name).contains(word, Qt::CaseInsensitive) ||
               fromView(referenceMeaning(row)).contains(word, Qt::CaseInsensitive) ||
               fromView(row.syntax).contains(word, Qt::CaseInsensitive) ||
               topicInWords(row.topic).contains(word, Qt::CaseInsensitive) || wordOf(row) == word;
    });
}

}  // namespace numalink
