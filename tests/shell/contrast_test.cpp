// Texts are told from their ground by 4.5 to 1 and signs by 3 to 1, in light and in dark windows, whatever the desktop
// and the settings choose.
#include <QTextBlock>

#include "shell/parts/color_contrast.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/program_colors.h"
#include "shell/run/keypad_skin.h"
#include "shell/shell_fixture.h"

namespace numalink {

namespace {

constexpr double signContrast = 3;

struct Look {
    const char *name;
    QRgb window, base, text, highlight, link;
};
// Grounds as desktops have them; what is selected and links as bad as Qt's own defaults.
constexpr Look looks[] = {
    {"light", 0xFFEFEFEF, 0xFFFFFFFF, 0xFF000000, 0xFF308CC6, 0xFF0000FF},
    {"light, soft", 0xFFEFF0F1, 0xFFFCFCFC, 0xFF232629, 0xFF3DAEE9, 0xFF2980B9},
    {"dark", 0xFF353535, 0xFF2A2A2A, 0xFFFFFFFF, 0xFF308CC6, 0xFF0000FF},
    {"dark, soft", 0xFF31363B, 0xFF232629, 0xFFEFF0F1, 0xFF3DAEE9, 0xFF2980B9},
    {"black", 0xFF1E1E1E, 0xFF000000, 0xFFE6E8EA, 0xFF2A82DA, 0xFF0000FF},
};

QPalette paletteOf(const Look &look) {
    QPalette palette(QColor::fromRgb(look.window), QColor::fromRgb(look.window));
    palette.setColor(QPalette::Base, QColor::fromRgb(look.base));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, QColor::fromRgb(look.text));
    palette.setColor(QPalette::Highlight, QColor::fromRgb(look.highlight));
    palette.setColor(QPalette::HighlightedText, QColor::fromRgb(0xFFFCFCFC));
    for (const QPalette::ColorRole role : {QPalette::Link, QPalette::LinkVisited})
        palette.setColor(role, QColor::fromRgb(look.link));
    QColor hint = QColor::fromRgb(look.text);
    hint.setAlpha(128);
    palette.setColor(QPalette::PlaceholderText, hint);
    return palette;
}

void expectApart(const QColor &one, const QColor &other, double contrast, const std::string &what) {
    EXPECT_EQ(one.alpha(), 255) << what;
    EXPECT_GE(contrastOf(one, other), contrast)
        << what << ": " << one.name().toStdString() << " on " << other.name().toStdString();
}

void expectReadablePalette() {
    const QPalette palette = QApplication::palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        for (const auto &[text, ground] :
             {std::pair(QPalette::Text, QPalette::Base), std::pair(QPalette::WindowText, QPalette::Window),
              std::pair(QPalette::Link, QPalette::Base), std::pair(QPalette::LinkVisited, QPalette::Base),
              std::pair(QPalette::PlaceholderText, QPalette::Base),
              std::pair(QPalette::HighlightedText, QPalette::Highlight)})
            expectApart(palette.color(group, text), palette.color(group, ground), readableContrast,
                        "role " + std::to_string(text));
    }
}

}  // namespace

TEST(Contrast, OfEachColourOfOurOwn) {
    for (const Look &look : looks) {
        const QPalette palette = paletteOf(look);
        const QColor base = palette.color(QPalette::Base), text = palette.color(QPalette::Text);
        const ColorScheme &scheme = schemeOn(base);
        for (const OwnColorRow &row : ownColorRows) {
            const std::string what = std::string(look.name) + ", colour " + std::to_string(static_cast<int>(row.name));
            const QColor color = ownColor(row.name, palette);
            switch (row.use) {
                case ColorUse::underText:
                    expectApart(text, color, readableContrast, what);
                    break;
                case ColorUse::underProgram:
                    for (const QRgb part : scheme) expectApart(QColor::fromRgb(part), color, readableContrast, what);
                    break;
                case ColorUse::signOnText:
                    expectApart(color, base, signContrast, what);
                    break;
                case ColorUse::signOnWindow:
                    expectApart(color, palette.color(QPalette::Window), signContrast, what);
                    break;
            }
        }
        for (const QRgb part : scheme) expectApart(QColor::fromRgb(part), base, readableContrast, look.name);
    }
    for (const KeypadText &legend : keypadTexts()) expectApart(legend.text, legend.ground, readableContrast, "key pad");
}

using Contrasts = ShellTest;

TEST_F(Contrasts, OfTheDesktopsPaletteAreMadeReadableAlsoWhenItChanges) {
    const QPalette before = QApplication::palette();
    for (const Look &look : looks) {
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, look.name);
        QApplication::setPalette(paletteOf(look));
        if (running)
            QCoreApplication::processEvents();
        else
            ASSERT_TRUE(startProgram());
        expectReadablePalette();
    }
    endProgram();
    QApplication::setPalette(before);
}

// Light grey letters, chosen in the settings: in either window they are moved until they are read.
TEST_F(Contrasts, OfAProgramHoldWhateverColoursAreChosen) {
    const QPalette before = QApplication::palette();
    for (const Look &look : {looks[0], looks[2]}) {
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, look.name);
        QApplication::setPalette(paletteOf(look));
        ASSERT_TRUE(startProgram());
        for (const char *key : programColorKeys) settingsSetColour(key, 0x909090);
        settingsSetInt(setting::syntaxHighlighting, 1);
        show(addProgram("ABC" + std::to_string(look.base & 1U), "(1+A)\xF7\x0B"));
        QTest::keyClick(programEdit, Qt::Key_Home);
        ASSERT_TRUE(QTest::qWaitFor([] { return !programEdit->extraSelections().isEmpty(); }));
        const QColor base = programEdit->palette().color(QPalette::Base);
        const auto ranges = programEdit->document()->firstBlock().layout()->formats();
        ASSERT_GE(ranges.size(), 2);
        for (const QTextLayout::FormatRange &range : ranges) {
            const QColor text = range.format.foreground().color();
            expectApart(text, base, readableContrast, "program");
            for (const QTextEdit::ExtraSelection &mark : programEdit->extraSelections())
                if (mark.format.background().style() != Qt::NoBrush)
                    expectApart(text, mark.format.background().color(), readableContrast, "marked");
        }
        endProgram();
    }
    QApplication::setPalette(before);
}

}  // namespace numalink
