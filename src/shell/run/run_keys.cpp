#include "shell/run/run_keys.h"

#include <QFile>
#include <QFileDialog>
#include <QMainWindow>
#include <optional>
#include <utility>

#include "calculator/charset.h"
#include "emulator/run/key_file.h"
#include "platform/files.h"
#include "settings/settings_store.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/save_path.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/run/run_marks.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr char keyFileEnding[] = "keys";

struct RunKeysOfWindow {
    std::optional<KeyFile> toPlay;                           // by the run that begins
    std::vector<std::pair<std::string, int>> usersSettings;  // those in whose place the file's stand
};
RunKeysOfWindow state;

// Told when it is none.
std::optional<KeyFile> readKeys(const std::string &path) {
    Bytes bytes;
    const FileResult result = readWholeFile(path, bytes, keyFileLimit);
    if (result != FileResult::done) {
        failWith(fileTrouble(result), {path, std::to_string(keyFileLimit >> 20)});
        return std::nullopt;
    }
    KeyFile file;
    const int line = keyFileRead({reinterpret_cast<const char *>(bytes.data()), bytes.size()}, file);
    if (line == 0) return file;
    failWith(Text::keysDamaged, {path, std::to_string(line)});
    return std::nullopt;
}

QString askKeyFile() {
    QFileDialog dialog(mainWindow);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(textOf(Text::filterKeys) + QStringLiteral(" (*.%1)").arg(QLatin1String(keyFileEnding)));
    return runDialog(dialog) == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

}  // namespace

void saveKeys() {
    if (!emulatorShown()) return;
    const ItemId program = emulatedItem();
    const std::optional<ItemEntry> entry = storeReadEntry(program);
    KeyFile file{.program = {}, .settings = keyFileSettings(), .keys = keysTaken()};
    file.checksum = keyFileChecksum(program);
    if (entry) file.program = utf8FromCalculator(entry->name);
    const QString path =
        askSavePath(Text::filterKeys, QString::fromLatin1(keyFileEnding), QString::fromStdString(file.program));
    if (path.isEmpty()) return;
    const std::string text = keyFileText(file), target = QFile::encodeName(path).toStdString();
    const ByteView bytes(reinterpret_cast<const std::uint8_t *>(text.data()), text.size());
    if (!writeUserFile(target, bytes, false)) return;
    const std::string statement = std::to_string(file.keys.statements);
    statusLine(StatusPart::item, Text::keysSaved, {statement, target});
    if (file.keys.isCut) tellUser(Text::keysCut, {statement});
}

void playKeys() {
    const QString path = askKeyFile();
    if (path.isEmpty()) return;
    std::optional<KeyFile> file = readKeys(QFile::encodeName(path).toStdString());
    if (!file) return;
    const bool isOther = file->checksum != 0 && file->checksum != keyFileChecksum(selectedItemId());
    if (isOther) tellUser(Text::keysOfOther, {file->program}, BoxIcon::information);
    if (emulatorShown()) emulatorToggle();
    if (emulatorShown()) return;
    state.toPlay = std::move(file);
    emulatorToggle();
    state.toPlay.reset();
}

void useSettingsOfKeys() {
    endKeys();
    if (!state.toPlay) return;
    state.usersSettings = keyFileSettings();
    for (const auto &[component, value] : state.toPlay->settings) settingsSetInt(keyFileSettingKey(component), value);
}

void beginKeys() {
    if (state.toPlay) {
        keysBeginPlaying(std::move(state.toPlay->keys));
        state.toPlay.reset();
    } else {
        keysBegin();
    }
}

void endKeys() {
    for (const auto &[component, value] : std::exchange(state.usersSettings, {}))
        settingsSetInt(keyFileSettingKey(component), value);
    showRunMarks();
}

}  // namespace numalink
