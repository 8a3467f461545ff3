#include "shell/parts/pane_sizes.h"

#include <QDockWidget>
#include <QMainWindow>
#include <map>
#include <optional>

#include "settings/settings_store.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int greatestSize = 9999;  // pixels

// The setting: for each pane its letter and size, "V290x310K258x512".
struct PaneLetter {
    char letter;
    const char *name;
};
constexpr PaneLetter paneLetters[] = {{'K', "calculatorDock"}, {'V', "variablesDock"},   {'W', "watchesDock"},
                                      {'C', "callsDock"},      {'B', "breakpointsDock"}, {'P', "profileDock"},
                                      {'N', "problemsDock"},   {'O', "outlineDock"},     {'U', "usesDock"}};

std::optional<std::map<QString, QSize>> sizes;  // by the pane's name; none: not read from the settings yet

QSize sizeIn(const QString &setting, char letter) {
    const qsizetype at = setting.indexOf(QLatin1Char(letter));
    if (at < 0) return {};
    qsizetype end = at + 1;
    while (end < setting.size() && (setting[end].isDigit() || setting[end] == QLatin1Char('x'))) end++;
    const QStringList parts = setting.mid(at + 1, end - at - 1).split(QLatin1Char('x'));
    const QSize size(parts.value(0).toInt(), parts.value(1).toInt());
    return size.isEmpty() ? QSize() : size.boundedTo({greatestSize, greatestSize});
}

std::map<QString, QSize> &known() {
    if (sizes) return *sizes;
    sizes.emplace();
    const QString setting = toQt(settingsValue(setting::paneSizes));
    for (const PaneLetter &row : paneLetters) (*sizes)[QString::fromLatin1(row.name)] = sizeIn(setting, row.letter);
    return *sizes;
}

}  // namespace

QSize paneSize(const QDockWidget *pane) { return known()[pane->objectName()]; }

void notePaneSize(const QDockWidget *pane) {
    if (pane->isVisible() && !pane->isFloating()) known()[pane->objectName()] = pane->size();
}

void keepPaneSizes() {
    QString setting;
    for (const QDockWidget *pane : mainWindow->findChildren<QDockWidget *>()) notePaneSize(pane);
    for (const PaneLetter &row : paneLetters) {
        const QSize size = known()[QString::fromLatin1(row.name)];
        if (!size.isEmpty())
            setting += QStringLiteral("%1%2x%3").arg(QLatin1Char(row.letter)).arg(size.width()).arg(size.height());
    }
    if (!setting.isEmpty()) settingsSetValue(setting::paneSizes, setting.toStdString());
}

void forgetPaneSizes() { sizes.reset(); }

}  // namespace numalink
