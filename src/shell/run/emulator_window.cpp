#include "shell/run/emulator_window.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <atomic>
#include <optional>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "emulator/machine/pace.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/mode_commands.h"
#include "emulator/run/run_loading.h"
#include "emulator/run/runner.h"
#include "emulator/screens/display.h"
#include "settings/settings_store.h"
#include "shell/editor/program_view.h"
#include "shell/parts/command_states.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/debug_window.h"
#include "shell/run/display_out.h"
#include "shell/run/emulator_access.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/emulator_place.h"
#include "shell/run/full_screen.h"
#include "shell/run/key_assignments.h"
#include "shell/run/key_names.h"
#include "shell/run/keypad_focus.h"
#include "shell/run/keypad_skin.h"
#include "shell/run/mode_line.h"
#include "shell/run/moments.h"
#include "shell/run/recording.h"
#include "shell/run/run_keys.h"
#include "shell/run/run_marks.h"
#include "shell/run/run_way.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "shell/views/surface_view.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int repaintMilliseconds = 16;  // at most 60 repaints a second

struct EmulatorWindow {
    QImage skin;           // the key pad at the present scale
    double skinScale = 0;  // pixels of the screen a dot, for which skin was drawn
    Surface display;       // the copy that is on screen
    std::uint64_t displaySeen = 0;
    int outlinedKey = 0;
    ItemId started = noItem;
    std::optional<QPointF> dragFrom;  // where the mouse went down on the display
};
EmulatorWindow state;

std::atomic<bool> marked{false};  // a look at the display is due; any thread

// Pixels of the window a dot.
double dotSize() {
    if (surfaceZoom() != zoomToFit) return wholeDot(emulatorWindow, surfaceZoom());
    return largestDot(emulatorWindow, emulatorWindow->size() - QSize(0, modeLineHeight()), {keypadWidth, keypadHeight},
                      64);
}

// Where the surface's top left dot stands in the window.
QPointF origin() {
    const QSizeF surface = QSizeF(keypadWidth, keypadHeight) * dotSize();
    const int top = modeLineHeight();
    const QSizeF rest = QSizeF(emulatorWindow->size()) - QSizeF(0, top) - surface;
    if (rest.width() < 0 || rest.height() < 0) return onPixel(emulatorWindow, QPointF(1, top + 1));
    return onPixel(emulatorWindow, QPointF(std::floor(rest.width() / 2) + 1, top + std::floor(rest.height() / 2) + 1));
}

QRectF displayPlace() { return {origin(), QSizeF(displayWidth, displayHeight) * dotSize()}; }

// The dot of the surface under a place of the window.
QPoint dotAtPlace(const QPointF &place) {
    const QPointF relative = place - origin();
    const double size = dotSize();
    return {static_cast<int>(std::floor(relative.x() / size)), static_cast<int>(std::floor(relative.y() / size))};
}

const QImage &skinAt(double pixelsPerDot) {
    if (state.skinScale == pixelsPerDot) return state.skin;
    state.skin = QImage(qRound(keypadWidth * pixelsPerDot), qRound(keypadHeight * pixelsPerDot),
                        QImage::Format_ARGB32_Premultiplied);
    state.skin.fill(Qt::transparent);
    QPainter painter(&state.skin);
    painter.scale(pixelsPerDot, pixelsPerDot);
    paintKeypad(painter, pixelsPerDot);
    state.skinScale = pixelsPerDot;
    return state.skin;
}

void paintEmulator() {
    QPainter painter(emulatorWindow);
    if (keyNamesShown()) return paintKeyNames(painter);
    painter.translate(origin());
    const double size = dotSize();
    const QImage &pad = skinAt(size * emulatorWindow->devicePixelRatioF());
    painter.drawImage(QRectF(0, 0, keypadWidth * size, keypadHeight * size), pad, QRectF(pad.rect()));
    const QImage image(
        reinterpret_cast<const uchar *>(state.display.dots.data()), state.display.width, state.display.height,
        static_cast<qsizetype>(state.display.width) * static_cast<qsizetype>(sizeof(Color)), QImage::Format_RGB32);
    painter.drawImage(QRectF(0, 0, state.display.width * size, state.display.height * size), image,
                      QRectF(image.rect()));
    painter.scale(size, size);
    paintKeyOutline(painter, state.outlinedKey);
    if (emulatorRunning) paintKeyFocus(painter, pickedKey());
}

bool isOnDisplay(const QPoint &dot) {
    return dot.x() >= 0 && dot.x() < displayWidth && dot.y() >= 0 && dot.y() < displayHeight;
}

void mouseMoved(const QMouseEvent &mouse) {
    if (state.dragFrom && (mouse.buttons() & Qt::LeftButton) != 0) {
        const bool isFar = (mouse.position() - *state.dragFrom).manhattanLength() >= QApplication::startDragDistance();
        if (!isFar) return;
        state.dragFrom.reset();
        return dragDisplay();
    }
    if (!emulatorRunning) return;
    const QPoint dot = dotAtPlace(mouse.position());
    const int key = keyHit(dot.x(), dot.y());
    if (key == state.outlinedKey) return;
    state.outlinedKey = key;
    emulatorWindow->update();
}

// What the key under the mouse is on the keyboard.
void showKeyTip(const QHelpEvent &help) {
    const QPoint dot = dotAtPlace(help.pos());
    const KeyFace *face = keyFaceOf(keyHit(dot.x(), dot.y()));
    if (face == nullptr) return QToolTip::hideText();
    const QStringList names = keyboardNamesOf(face->code);
    if (names.isEmpty()) return QToolTip::hideText();
    QToolTip::showText(help.globalPos(),
                       QString::fromUtf8(face->legend) + QStringLiteral(": ") + names.join(QStringLiteral(", ")));
}

void pressOnPad(int key) {
    dismissStopLine();
    pressKey(key);
    if (key != stopKey) return;
    QTimer::singleShot(0, emulatorWindow, [] {
        if (emulatorRunning) emulatorToggle();
    });
}

void mousePressed(const QMouseEvent &mouse) {
    emulatorWindow->setFocus();
    if (!emulatorRunning || mouse.button() != Qt::LeftButton) return;
    const QPoint dot = dotAtPlace(mouse.position());
    if (isOnDisplay(dot)) state.dragFrom = mouse.position();
    pressOnPad(keyHit(dot.x(), dot.y()));
}

bool keyPressed(const QKeyEvent &key) {
    if (isMenuKey(key)) return false;
    if (!keypadKeyDown(key) && !emulatorKeyDown(key)) return false;
    dismissStopLine();
    return true;
}

bool emulatorEvent(QWidget *, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            paintEmulator();
            return true;
        case QEvent::Resize:
            placeModeLine();
            fitEmulatorPlace();
            return false;
        case QEvent::ToolTip:
            showKeyTip(*static_cast<QHelpEvent *>(event));
            return true;
        case QEvent::MouseMove:
            mouseMoved(*static_cast<QMouseEvent *>(event));
            return true;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            mousePressed(*static_cast<QMouseEvent *>(event));
            return true;
        case QEvent::MouseButtonRelease:
            state.dragFrom.reset();
            if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) releaseKey();
            return true;
        case QEvent::Leave:
            state.outlinedKey = 0;
            emulatorWindow->update();
            return false;
        case QEvent::FocusOut:
            releaseAllKeys();
            hideKeyNames();
            return false;
        case QEvent::ShortcutOverride:
            // While a run is on, the keys of the commands are keys of the calculator.
            if (!emulatorRunning || isMenuKey(*static_cast<QKeyEvent *>(event))) return false;
            event->accept();
            return true;
        case QEvent::KeyPress:
            followNamesKey(*static_cast<QKeyEvent *>(event));
            return emulatorRunning && keyPressed(*static_cast<QKeyEvent *>(event));
        case QEvent::KeyRelease:
            followNamesKey(*static_cast<QKeyEvent *>(event));
            return emulatorKeyUp(*static_cast<QKeyEvent *>(event));
        default:
            return false;
    }
}

void takeDisplay() {
    marked = false;
    if (emulatorWindow == nullptr || !emulatorShown()) return;
    if (displayCopy(state.display, state.displaySeen)) {
        emulatorWindow->update(displayPlace().toAlignedRect());
        recordDisplay(state.display);
        if (const QString text = toQt(displayText()); text != emulatorWindow->accessibleDescription())
            emulatorWindow->setAccessibleDescription(text);
        tellDisplayText();
    }
    fullScreenRepaint();
    updateDebugWindow();
}

QRect pixelsOfDots(const QRect &dots) {
    const double size = dotSize();
    return QRectF(origin() + QPointF(dots.topLeft()) * size, QSizeF(dots.size()) * size).toAlignedRect();
}

void showPickedKey() {
    emulatorWindow->update();
    if (keypadFocused()) emulatorWindow->setFocus();
    tellPickedKey();
}

void startAnewWithModes();

bool startRun(ItemId item, const Moment *from = nullptr) {
    state.started = item;
    useSettingsOfKeys();
    machineStart();
    if (!loadRun(item, itemsBeside(item))) return false;
    beginKeys();
    const bool hasModes = from == nullptr ? machine.calculatorModes : from->state.machine.calculatorModes;
    showModeLine(hasModes ? std::vector<std::string>() : modeCommandsOfRun(), startAnewWithModes);
    state.displaySeen = 0;
    state.display = displayNow();
    runBegins();
    if (!momentsBegin(item, from)) return false;
    fitEmulatorPlace();
    emulatorWindow->update();
    const bool runs = runStart();
    if (from != nullptr) watchWay();
    showRunMarks();
    return runs;
}

void emulate(ItemId item, const Moment *from = nullptr) {
    if (!besideProgram() && !leaveCurrentView()) return;
    state.outlinedKey = 0;
    showEmulatorPlace();
    if (settingsInt(setting::displayDebug) != 0) showDebugWindow();
    // Full screen would hide the program that one wants to see.
    if (settingsInt(setting::fullscreen) == 1 && !besideProgram()) fullScreenEnter();
    commandStatesChanged();
    if (!startRun(item, from)) {
        emulatorStop();
        return;
    }
    emulatorWindow->setFocus();
}

void startAnewWithModes() {
    if (!emulatorRunning) return;
    endKeys();
    settingsSetInt(setting::calculatorModes, 1);
    if (!settingsSave()) tellUser(Text::settingsNotSaved);
    runStop();
    runIsOver();
    keyCode = 0;
    if (!startRun(state.started)) emulatorStop();
}

void showRunFault() {
    const RunFault &fault = runFault();
    if (fault.line == 0 || fault.item != viewItemId) return;
    selectStatement(fault.line, fault.statement);
    programEdit->setFocus();
}

void stopAndShowProgram() {
    if (besideProgram()) {
        emulatorStop();
        if (viewItemId == noItem) openSelectedItem();
    } else {
        if (!leaveCurrentView()) return;
        openSelectedItem();
    }
    showRunFault();
}

// Beside the program the calculator goes on while other items are looked at, but not without its program.
void stopWithView() {
    if (!besideProgram() || !storeReadEntry(state.started)) emulatorStop();
}

QRect displayOnDesktop() {
    if (const QWidget *full = fullScreenShown()) return fullScreenDisplay().translated(full->mapToGlobal(QPoint(0, 0)));
    const QRect place = displayPlace().toAlignedRect();
    return place.translated(emulatorWindow->mapToGlobal(QPoint(0, 0)));
}

}  // namespace

bool emulatorShown() { return emulatorWindow != nullptr && !emulatorWindow->isHidden(); }
ItemId emulatedItem() { return state.started; }

void emulatorToggle() {
    if (emulatorRunning) return stopAndShowProgram();
    const std::optional<ItemEntry> item = storeReadEntry(selectedItemId());
    if (!item || item->kind != kind::program) return;
    emulate(item->id);
}

void emulateFrom(ItemId program, const Moment &moment) {
    if (!emulatorShown()) return emulate(program, &moment);
    runStop();
    runIsOver();
    endKeys();
    releaseAllKeys();
    startRun(program, &moment) ? emulatorWindow->setFocus() : emulatorStop();
}

void emulatorStop() {
    if (!emulatorShown()) return;
    runStop();
    keepWhereStopped(state.started);
    endKeys();
    recordingEnds();
    releaseAllKeys();
    fullScreenLeave();
    hideDebugWindow();
    leaveKeypad();
    hideEmulatorPlace();
    commandStatesChanged();
}

QWidget *runWindow() {
    QWidget *full = fullScreenShown();
    return full != nullptr ? full : mainWindow;
}

// Below it, else above, else to the right or left; where there is no room at all, over its top, since errors stand at
// its bottom.
void placeBesideDisplay(QWidget *box) {
    if (!emulatorShown()) return;
    constexpr int gap = 8;
    constexpr QMargins frame(4, 32, 4, 4);  // about what a window manager adds
    const QRect shownDisplay = displayOnDesktop();
    const QRect room = runWindow()->screen()->availableGeometry();
    box->adjustSize();
    QRect place = box->rect().marginsAdded(frame);
    place.moveTopLeft({shownDisplay.center().x() - place.width() / 2, shownDisplay.bottom() + gap});
    place.moveLeft(std::clamp(place.left(), room.left(), std::max(room.left(), room.right() - place.width())));
    if (place.bottom() > room.bottom()) place.moveBottom(shownDisplay.top() - gap);
    if (place.top() < room.top()) {
        place.moveTop(room.top());
        if (shownDisplay.right() + gap + place.width() <= room.right())
            place.moveLeft(shownDisplay.right() + gap);
        else if (shownDisplay.left() - gap - place.width() >= room.left())
            place.moveRight(shownDisplay.left() - gap);
    }
    box->move(place.topLeft());
}

void goToRunFault() {
    if (!emulatorShown()) return;
    const ItemId halted = runFault().item;
    if (halted == noItem || halted == selectedItemId()) return stopAndShowProgram();
    if (besideProgram()) emulatorStop();
    if (selectItem(halted)) showRunFault();
}

bool showBesideProgram(bool beside) {
    if (beside == besideProgram()) return true;
    const bool shown = emulatorShown();
    // The view is under the calculator, and closed: it opens where both are to be seen, and closes where not.
    if (shown && !beside && !leaveCurrentView()) return false;
    rememberBeside(beside);
    if (!shown) return true;
    beside ? showEmulatorPlace() : placeEmulator();
    if (beside) openSelectedItem();
    emulatorWindow->setFocus();
    return true;
}

void chooseSpeed(int factor) {
    settingsSetInt(setting::fullSpeed, factor == 0 ? 1 : 0);
    if (factor > 0) paceFactor = factor;
    if (emulatorRunning) fullSpeed = factor == 0 || speedHeld;
    commandStatesChanged();
}

void displayMarked() {
    if (marked.exchange(true)) return;
    QMetaObject::invokeMethod(
        qApp, [] { QTimer::singleShot(repaintMilliseconds, qApp, takeDisplay); }, Qt::QueuedConnection);
}

void makeEmulatorWindow() {
    emulatorWindow = new QWidget(clientArea);
    offerEmulatorAccess(pixelsOfDots);  // ahead of the first word that is told of it
    emulatorWindow->setObjectName(QStringLiteral("emulatorWindow"));
    emulatorWindow->setAccessibleName(textOf(Text::displayName));
    emulatorWindow->setFocusPolicy(Qt::StrongFocus);
    emulatorWindow->setMouseTracking(true);
    emulatorWindow->setAttribute(Qt::WA_InputMethodEnabled, false);
    emulatorWindow->hide();
    state.display = Surface(displayWidth, displayHeight);
    makeKeyNames();
    hookEvents(emulatorWindow, emulatorEvent);
    loadAssignments();
    pressPadKey = pressOnPad;
    keypadFocusChanged = showPickedKey;
    viewLeft = stopWithView;
}

void zoomEmulatorWindow() {
    if (emulatorWindow != nullptr) emulatorWindow->update();
}

void forgetEmulatorWindow() {
    emulatorWindow = nullptr;
    forgetEmulatorAccess();
    forgetKeypadFocus();
    viewLeft = [] {};
    state = {};
    marked = false;
    forgetEmulatorKeys();
    forgetRunMarks();
    forgetWay();
    forgetDraggedFiles();
    forgetModeLine();
    forgetFullScreen();
    forgetDebugWindow();
    forgetEmulatorPlace();
}

}  // namespace numalink
