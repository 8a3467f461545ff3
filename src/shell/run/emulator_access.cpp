#include "shell/run/emulator_access.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>
#include <algorithm>
#include <utility>
#include <vector>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "emulator/screens/display.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/keypad_focus.h"

namespace numalink {

namespace {

struct EmulatorAccess {
    QRect (*placeOfDots)(const QRect &dots) = nullptr;
    QString told;  // the display's text that was told last
};
EmulatorAccess access;

class KeyAccess final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    explicit KeyAccess(const KeyFace &which) : face(which) {}

    bool isValid() const override { return emulatorWindow != nullptr; }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(emulatorWindow); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    void setText(QAccessible::Text, const QString &) override {}
    QAccessible::Role role() const override { return QAccessible::Button; }

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Name) return QString::fromUtf8(face.legend);
        if (which != QAccessible::Description) return {};
        QStringList second;
        if (face.shift[0] != '\0') second << QStringLiteral("SHIFT: ") + QString::fromUtf8(face.shift);
        if (face.alpha[0] != '\0') second << QStringLiteral("ALPHA: ") + QString::fromUtf8(face.alpha);
        return second.join(QStringLiteral(", "));
    }

    QRect rect() const override {
        const KeySize size = keySize(face.shape);
        const QRect place = access.placeOfDots(QRect(face.x, face.y, size.width, size.height));
        return place.translated(emulatorWindow->mapToGlobal(QPoint(0, 0)));
    }

    QAccessible::State state() const override {
        QAccessible::State now;
        now.focusable = true;
        now.focused = pickedKey() == face.code;
        now.invisible = !emulatorWindow->isVisible();
        now.disabled = !emulatorRunning;
        return now;
    }

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString &) const override { return keyboardNamesOf(face.code); }
    void doAction(const QString &name) override {
        if (name != pressAction() || !emulatorRunning) return;
        pressPadKey(face.code);
        releaseKey();
    }

private:
    const KeyFace &face;
};

QString textOnDisplay() {
    QString text = toQt(displayLines());
    text.chop(1);
    return text;
}

// Behind the widgets within the window come the keys of the pad. Qt deletes it by what it owns it through.
// NOLINTNEXTLINE(cppcoreguidelines-special-member-functions,cppcoreguidelines-virtual-class-destructor)
class CalculatorAccess final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit CalculatorAccess(QWidget *window) : QAccessibleWidget(window, QAccessible::Terminal) {
        for (const KeyFace &face : keyFaces())
            keys.push_back(QAccessible::registerAccessibleInterface(new KeyAccess(face)));
    }

    int childCount() const override { return QAccessibleWidget::childCount() + static_cast<int>(keys.size()); }
    QAccessibleInterface *child(int index) const override {
        const int widgets = QAccessibleWidget::childCount();
        if (index < widgets) return QAccessibleWidget::child(index);
        const auto key = static_cast<std::size_t>(index - widgets);
        return key < keys.size() ? QAccessible::accessibleInterface(keys[key]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *wanted) const override {
        for (int i = QAccessibleWidget::childCount(); i < childCount(); i++)
            if (child(i) == wanted) return i;
        return QAccessibleWidget::indexOfChild(wanted);
    }
    QAccessibleInterface *focusChild() const override {
        for (std::size_t i = 0; i < keys.size(); i++)
            if (keyFaces()[i].code == pickedKey()) return QAccessible::accessibleInterface(keys[i]);
        return QAccessibleWidget::focusChild();
    }
    QAccessible::State state() const override {
        QAccessible::State now = QAccessibleWidget::state();
        now.multiLine = now.readOnly = true;
        return now;
    }
    void *interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    // Nothing of the display can be selected, and its caret is the end of what was written.
    void selection(int, int *from, int *to) const override { *from = *to = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    void setCursorPosition(int) override {}
    void scrollToSubstring(int, int) override {}
    int cursorPosition() const override { return static_cast<int>(textOnDisplay().size()); }
    int characterCount() const override { return static_cast<int>(textOnDisplay().size()); }
    QString text(int from, int to) const override { return textOnDisplay().mid(from, to - from); }
    QString text(QAccessible::Text which) const override { return QAccessibleWidget::text(which); }
    QRect characterRect(int offset) const override {
        constexpr int width = 6, height = 8;  // dots
        const QString ahead = textOnDisplay().left(offset);
        const qsizetype row = ahead.count(QLatin1Char('\n')),
                        column = offset - ahead.lastIndexOf(QLatin1Char('\n')) - 1;
        const QRect dots(static_cast<int>(column) * width, static_cast<int>(row) * height, width, height);
        return access.placeOfDots(dots).translated(widget()->mapToGlobal(QPoint(0, 0)));
    }
    int offsetAtPoint(const QPoint &place) const override {
        for (int i = 0; i < characterCount(); i++)
            if (characterRect(i).contains(place)) return i;
        return -1;
    }
    QString attributes(int, int *from, int *to) const override {
        *from = 0;
        *to = characterCount();
        return {};
    }

protected:
    ~CalculatorAccess() override {
        for (const QAccessible::Id key : keys) QAccessible::deleteAccessibleInterface(key);
    }

private:
    std::vector<QAccessible::Id> keys;
};

QAccessibleInterface *accessOf(const QString &, QObject *object) {
    if (object == nullptr || object != emulatorWindow) return nullptr;
    return new CalculatorAccess(emulatorWindow);
}

}  // namespace

void offerEmulatorAccess(QRect (*placeOfDots)(const QRect &dots)) {
    access.placeOfDots = placeOfDots;
    QAccessible::installFactory(accessOf);
}

// What is before and behind the change stays unsaid.
void tellDisplayText() {
    if (!QAccessible::isActive()) return;
    const QString before = std::exchange(access.told, textOnDisplay()), &now = access.told;
    if (now == before) return;
    const qsizetype shorter = std::min(now.size(), before.size());
    qsizetype ahead = 0, behind = 0;
    while (ahead < shorter && now[ahead] == before[ahead]) ahead++;
    while (behind < shorter - ahead && now[now.size() - behind - 1] == before[before.size() - behind - 1]) behind++;
    QAccessibleTextUpdateEvent event(emulatorWindow, static_cast<int>(ahead),
                                     before.mid(ahead, before.size() - ahead - behind),
                                     now.mid(ahead, now.size() - ahead - behind));
    QAccessible::updateAccessibility(&event);
}

void tellPickedKey() {
    if (!QAccessible::isActive()) return;
    QAccessibleInterface *window = QAccessible::queryAccessibleInterface(emulatorWindow);
    QAccessibleInterface *focused = window->focusChild();
    QAccessibleEvent event(emulatorWindow, QAccessible::Focus);
    if (focused != nullptr) event.setChild(window->indexOfChild(focused));
    QAccessible::updateAccessibility(&event);
}

void forgetEmulatorAccess() {
    QAccessible::removeFactory(accessOf);
    access = {};
}

}  // namespace numalink
