#include "shell/app/window_place.h"

#include <QByteArray>
#include <QMainWindow>
#include <string>
#include <utility>

#include "settings/settings_store.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/pane_sizes.h"

namespace numalink {

void restoreWindowPlace() {
    const QByteArray place = QByteArray::fromBase64(QByteArray::fromStdString(settingsValue(setting::windowPlace)));
    if (!place.isEmpty()) mainWindow->restoreGeometry(place);
}

void rememberWindowPlace() {
    const std::string place = mainWindow->saveGeometry().toBase64().toStdString();
    if (!settingsLoad()) return;
    const auto now = [] { return std::pair(settingsValue(setting::windowPlace), settingsValue(setting::paneSizes)); };
    const auto before = now();
    settingsSetValue(setting::windowPlace, place);
    keepPaneSizes();
    if (now() != before) settingsSave();
}

}  // namespace numalink
