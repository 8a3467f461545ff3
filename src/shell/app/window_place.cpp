#include "shell/app/window_place.h"

#include <QByteArray>
#include <QMainWindow>
#include <string>
#include <vector>

#include "settings/settings_file.h"
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
    const std::vector<Setting> before = settingsAll();
    settingsSetValue(setting::windowPlace, place);
    keepPaneSizes();
    if (settingsAll() != before) settingsSave();
}

}  // namespace numalink
