#include "shell/parts/fonts.h"

#include <QFontDatabase>

#include "shell/parts/scale.h"

namespace numalink {

namespace {

constexpr int programFontPixels = 21;  // 10.5 dots of 2 pixels
constexpr int treeFontPixels = 12;
const QString screenFace = QStringLiteral("Numalink Screen");

}  // namespace

void loadScreenFace() {
    static const int face = QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/numalink_screen.ttf"));
    Q_UNUSED(face);
}

QFont programFont() {
    QFont font(screenFace);
    font.setPixelSize(grownWhole(programFontPixels));
    font.setStyleHint(QFont::Monospace);
    return font;
}

QFont treeFont() {
    QFont font(screenFace);
    font.setPixelSize(grown(treeFontPixels));
    return font;
}

}  // namespace numalink
