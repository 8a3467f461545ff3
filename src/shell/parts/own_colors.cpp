#include "shell/parts/own_colors.h"

#include <QApplication>
#include <QEvent>

#include "shell/parts/color_contrast.h"

namespace numalink {

namespace {

constexpr bool inOrder() {
    for (std::size_t i = 0; i < std::size(ownColorRows); i++)
        if (static_cast<std::size_t>(ownColorRows[i].name) != i) return false;
    return true;
}
static_assert(inOrder(), "a row is found by its name's number");

QPalette readable(QPalette palette) {
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        const QColor ground = palette.color(group, QPalette::Base);
        for (const QPalette::ColorRole link : {QPalette::Link, QPalette::LinkVisited})
            palette.setColor(group, link, readableOn(ground, palette.color(group, link)));
        const QColor selected = palette.color(group, QPalette::HighlightedText);
        palette.setColor(group, QPalette::Highlight, readableOn(selected, palette.color(group, QPalette::Highlight)));
        palette.setColor(group, QPalette::PlaceholderText, faintText(palette));
    }
    return palette;
}

void makeReadable() {
    const QPalette now = QApplication::palette(), wanted = readable(now);
    if (wanted != now) QApplication::setPalette(wanted);  // asked for again by its own change, and then content
}

class Keeper : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) makeReadable();
        return QObject::eventFilter(watched, event);
    }
};

}  // namespace

void keepPaletteReadable(QObject *keeper) {
    makeReadable();
    qApp->installEventFilter(new Keeper(keeper));
}

}  // namespace numalink
