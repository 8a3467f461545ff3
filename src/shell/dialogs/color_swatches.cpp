#include "shell/dialogs/color_swatches.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <iterator>

#include "shell/editor/program_document.h"
#include "shell/parts/color_contrast.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/program_colors.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

using namespace std::string_view_literals;

constexpr int swatchWidth = 36, swatchHeight = 16, previewLines = 6;

// In the order of the dialog, down each column: the class and its wording.
struct SwatchRow {
    RunClass runClass;
    Text text;
};
constexpr SwatchRow swatchRows[] = {
    {RunClass::ascii, Text::colorAscii},
    {RunClass::text, Text::colorText},
    {RunClass::numbers, Text::colorNumbers},
    {RunClass::error, Text::colorError},
    {RunClass::twoByteCommand, Text::colorTwoByteCommand},
    {RunClass::oneByteCommand, Text::colorOneByteCommand},
    {RunClass::oneByteCharacter, Text::colorOneByteCharacter},
    {RunClass::comment, Text::colorComment},
};

// A program in which each class occurs. It holds a zero byte.
constexpr std::string_view previewTokens =
    "'DEMO\r\"SCORE\"?\x0E"
    "A\x0C"
    "\xF7\x00"
    "A>12.5\x13\xF7\x0C\r"
    "\xD1\r"
    "\x81"
    "A\x89\x7F\x40"
    "1\xFA"sv;

struct Swatches {
    std::array<QColor, runClassCount> colors;
    std::array<QPushButton *, runClassCount> buttons = {};
    QPlainTextEdit *preview = nullptr;
};
Swatches state;

std::size_t placeOf(RunClass runClass) { return static_cast<std::size_t>(runClass); }

QSize swatchSize() { return QSize(swatchWidth, swatchHeight) * textScale(); }

QIcon swatchIcon(const QColor &color, const QWidget *widget) {
    const qreal scale = widget->devicePixelRatioF();
    const QSize size = swatchSize();
    QPixmap picture(size * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(color);
    QPainter painter(&picture);
    painter.setPen(widget->palette().color(QPalette::Mid));
    painter.drawRect(QRectF(0.5, 0.5, size.width() - 1, size.height() - 1));
    return QIcon(picture);
}

void showColors() {
    for (std::size_t i = 0; i < state.buttons.size(); i++)
        state.buttons[i]->setIcon(swatchIcon(state.colors[i], state.preview));
    const QColor ground = state.preview->palette().color(QPalette::Base);
    Bytes image(std::size(previewTokens) + 2, 0xFF);  // ':', the tokens, the end mark
    image[0] = ':';
    std::copy(std::begin(previewTokens), std::end(previewTokens), image.begin() + 1);
    state.preview->clear();
    QTextCursor cursor(state.preview->document());
    for (const ViewLine &line : viewLines(image)) {
        if (!cursor.atStart()) cursor.insertBlock();
        for (const ColorRun &run : colorRuns(line, readLine(line, false))) {
            QTextCharFormat format;
            format.setForeground(readableOn(ground, state.colors[placeOf(run.runClass)]));
            cursor.insertText(qtFromCodes(std::string_view(line.text).substr(run.from, run.size)), format);
        }
    }
    state.preview->moveCursor(QTextCursor::Start);
}

void chooseColor(RunClass runClass, const QString &name) {
    const QColor chosen = QColorDialog::getColor(state.colors[placeOf(runClass)], state.preview->window(), name);
    if (!chosen.isValid()) return;
    state.colors[placeOf(runClass)] = chosen;
    showColors();
}

// A scheme is no use with highlighting off: the choice turns it on.
void takeScheme(const ColorScheme &scheme) {
    for (std::size_t i = 0; i < state.colors.size(); i++) state.colors[i] = QColor::fromRgb(scheme[i]);
    if (auto *box = state.preview->window()->findChild<QCheckBox *>(QString::fromLatin1(setting::syntaxHighlighting)))
        box->setChecked(true);
    showColors();
}

QPushButton *addChoice(QMessageBox &question, Text text, const char *name) {
    QPushButton *button = question.addButton(textOf(text), QMessageBox::AcceptRole);
    button->setObjectName(QString::fromLatin1(name));
    return button;
}

void addSwatches(QGridLayout *grid) {
    constexpr int rowsPerColumn = 8;
    int place = 0;
    for (const SwatchRow &row : swatchRows) {
        auto *button = new QPushButton;
        button->setIconSize(swatchSize());
        button->setFixedWidth(swatchSize().width() + 16);
        button->setAutoDefault(false);
        const QString name = textOf(row.text);
        button->setAccessibleName(name);
        button->setToolTip(textOf(Text::tipColor, {name.toStdString()}));
        button->setObjectName(QString::fromLatin1(programColorKeys[placeOf(row.runClass)]));
        QObject::connect(button, &QPushButton::clicked, button, [row, name] { chooseColor(row.runClass, name); });
        state.buttons[placeOf(row.runClass)] = button;
        auto *label = new QLabel(name);
        label->setBuddy(button);
        grid->addWidget(button, place % rowsPerColumn, place / rowsPerColumn * 2);
        grid->addWidget(label, place % rowsPerColumn, place / rowsPerColumn * 2 + 1);
        place++;
    }
    grid->setColumnStretch(1, 1);
}

QPushButton *schemeButton(Text text, const ColorScheme &scheme, const char *name) {
    auto *button = new QPushButton(textOf(text));
    button->setToolTip(textOf(Text::tipScheme));
    button->setAutoDefault(false);
    button->setObjectName(QString::fromLatin1(name));
    QObject::connect(button, &QPushButton::clicked, button, [&scheme] { takeScheme(scheme); });
    return button;
}

void makePreview() {
    state.preview = new QPlainTextEdit;
    state.preview->setFont(programFont());
    state.preview->setReadOnly(true);
    state.preview->setLineWrapMode(QPlainTextEdit::NoWrap);
    state.preview->setAccessibleName(textOf(Text::colorPreview));
    state.preview->setTabChangesFocus(true);
    state.preview->setToolTip(textOf(Text::tipColorPreview));
    state.preview->setMinimumSize(grown(300), previewLines * QFontMetrics(state.preview->font()).lineSpacing() + 12);
    state.preview->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

}  // namespace

void offerSchemeForBlack() {
    const auto isBlack = [](const QColor &color) { return color == Qt::black; };
    if (state.preview == nullptr || !std::ranges::all_of(state.colors, isBlack)) return;
    QMessageBox question(QMessageBox::Question, boxTitle(false), textOf(Text::colorsAllBlack), QMessageBox::NoButton,
                         state.preview->window());
    question.setTextFormat(Qt::PlainText);
    QPushButton *light = addChoice(question, Text::schemeLight, "offerLight");
    QPushButton *dark = addChoice(question, Text::schemeDark, "offerDark");
    QPushButton *none = addChoice(question, Text::schemeDefault, "offerNone");
    question.setEscapeButton(none);
    const bool isDark = &schemeOn(state.preview->palette().color(QPalette::Base)) == &darkScheme;
    question.setDefaultButton(isDark ? dark : light);
    runDialog(question);
    if (question.clickedButton() == light) takeScheme(lightScheme);
    if (question.clickedButton() == dark) takeScheme(darkScheme);
}

QWidget *makeColorSwatches() {
    auto *part = new QWidget;
    auto *sides = new QHBoxLayout(part);
    sides->setContentsMargins(0, 0, 0, 0);
    auto *choices = new QVBoxLayout;
    choices->addWidget(new QLabel(textOf(Text::settingsColors)));
    auto *grid = new QGridLayout;
    addSwatches(grid);
    choices->addLayout(grid);
    choices->addStretch();
    sides->addLayout(choices);
    makePreview();
    auto *shown = new QVBoxLayout;
    shown->addWidget(new QLabel(textOf(Text::colorPreview)));
    shown->addWidget(state.preview, 1);
    shown->addWidget(schemeButton(Text::schemeLight, lightScheme, "lightScheme"));
    shown->addWidget(schemeButton(Text::schemeDark, darkScheme, "darkScheme"));
    sides->addLayout(shown, 1);
    for (std::size_t i = 0; i < state.colors.size(); i++)
        state.colors[i] = qtColor(settingsColour(programColorKeys[i]));
    showColors();
    return part;
}

void storeSwatches() {
    for (std::size_t i = 0; i < state.colors.size(); i++)
        settingsSetColour(programColorKeys[i], settingColor(state.colors[i]));
}

void forgetSwatches() { state = {}; }

}  // namespace numalink
