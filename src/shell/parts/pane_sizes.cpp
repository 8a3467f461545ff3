#include "shell/parts/pane_sizes.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QTimer>
#include <algorithm>
#include <map>
#include <optional>

#include "settings/settings_file.h"
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

std::string keyOfPlace(char letter) { return std::string(setting::tornOff) + letter; }

// Empty also for a pane that was never torn off, which has no such setting.
std::string keptPlace(char letter) {
    const std::vector<Setting> all = settingsAll();
    const auto found = std::ranges::find(all, keyOfPlace(letter), &Setting::key);
    return found == all.end() ? std::string() : found->value;
}

void keepPlace(const QDockWidget &pane, char letter) {
    const std::string place = pane.isFloating() ? pane.saveGeometry().toBase64().toStdString() : std::string();
    if (place != keptPlace(letter)) settingsSetValue(keyOfPlace(letter), place);
}

}  // namespace

QSize paneSize(const QDockWidget *pane) { return known()[pane->objectName()]; }

void notePaneSize(const QDockWidget *pane) {
    if (pane->isVisible() && !pane->isFloating()) known()[pane->objectName()] = pane->size();
}

bool tearOffAgain(QDockWidget *pane) {
    const auto *row = std::ranges::find_if(
        paneLetters, [&](const PaneLetter &each) { return pane->objectName() == QLatin1String(each.name); });
    const std::string place = row == std::end(paneLetters) ? std::string() : keptPlace(row->letter);
    if (place.empty()) return false;
    pane->setFloating(true);
    pane->restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(place)));
    return true;
}

void bringUpPane(QDockWidget *pane, bool (*isWanted)(const QDockWidget *pane)) {
    if (!pane->isFloating() || mainWindow->isVisible()) return pane->setVisible(isWanted(pane));
    QTimer::singleShot(0, pane, [pane, isWanted] { pane->setVisible(isWanted(pane)); });
}

bool isPanePlace(const std::string &key) { return key.starts_with(setting::tornOff); }

void keepPaneSizes() {
    QString setting;
    for (const QDockWidget *pane : mainWindow->findChildren<QDockWidget *>()) notePaneSize(pane);
    for (const PaneLetter &row : paneLetters) {
        if (const auto *pane = mainWindow->findChild<QDockWidget *>(QLatin1String(row.name)))
            keepPlace(*pane, row.letter);
        const QSize size = known()[QString::fromLatin1(row.name)];
        if (!size.isEmpty())
            setting += QStringLiteral("%1%2x%3").arg(QLatin1Char(row.letter)).arg(size.width()).arg(size.height());
    }
    if (!setting.isEmpty()) settingsSetValue(setting::paneSizes, setting.toStdString());
}

void forgetPaneSizes() { sizes.reset(); }

}  // namespace numalink
