#include "shell/dialogs/report_text.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMainWindow>
#include <QRegularExpression>
#include <QScreen>
#include <QStyle>
#include <QSysInfo>
#include <array>

#include "link/wire_trace.h"
#include "platform/event_log.h"
#include "platform/program_folder.h"
#include "settings/settings_file.h"
#include "settings/settings_store.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/pane_sizes.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "store/item_store.h"
#include "telling/language_table.h"

namespace numalink {

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr char buildSort[] = "address sanitizer";
#elif defined(NDEBUG)
constexpr char buildSort[] = "release";
#else
constexpr char buildSort[] = "debug";
#endif

void addHead(QStringList &lines, const QString &title) { lines << QString() << title; }

void addFact(QStringList &lines, const char *name, const QString &value) {
    lines << QStringLiteral("  %1: %2").arg(QLatin1String(name), value);
}

void addProgram(QStringList &lines) {
    addFact(lines, "version", QStringLiteral(NUMALINK_VERSION));
    addFact(lines, "build",
            QStringLiteral("%1, compiler %2").arg(QLatin1String(buildSort), QLatin1String(__VERSION__)));
    addFact(lines, "Qt",
            QStringLiteral("%1, built with %2").arg(QLatin1String(qVersion()), QLatin1String(QT_VERSION_STR)));
    addFact(lines, "installed",
            programFolder() == libraryFolder() ? QStringLiteral("beside its library")
                                               : QStringLiteral("apart from its library"));
}

void addSystem(QStringList &lines) {
    addFact(lines, "system",
            QStringLiteral("%1, %2 %3, %4")
                .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                     QSysInfo::currentCpuArchitecture()));
    addFact(lines, "platform",
            QStringLiteral("%1, style %2, locale %3")
                .arg(QGuiApplication::platformName(), QApplication::style()->objectName(), QLocale().name()));
    for (const QScreen *screen : QGuiApplication::screens()) {
        addFact(lines, "screen",
                QStringLiteral("%1 x %2, scale %3, %4 dots an inch, texts times %5")
                    .arg(screen->size().width())
                    .arg(screen->size().height())
                    .arg(screen->devicePixelRatio())
                    .arg(screen->logicalDotsPerInch())
                    .arg(textScale()));
    }
    addFact(lines, "colours", isDark(mainWindow->palette()) ? QStringLiteral("dark") : QStringLiteral("light"));
    addFact(lines, "language", toQt(languageRecord(languageCurrent()).name));
}

// How much the library holds, not what.
void addLibrary(QStringList &lines) {
    std::uint64_t folders = 0, items = 0, bytes = 0;
    for (const ItemEntry &entry : storeListItems()) {
        (isFolderKind(entry.kind) ? folders : items)++;
        bytes += entry.dataSize;
    }
    addFact(lines, "library",
            QStringLiteral("%1 items of %2 bytes in %3 folders%4%5")
                .arg(items)
                .arg(bytes)
                .arg(folders)
                .arg(storeIsReadOnly() ? QStringLiteral(", only to be read") : QString(),
                     storeIsDamaged() ? QStringLiteral(", damaged") : QString()));
}

void addLines(QStringList &lines, const std::vector<std::string> &which) {
    for (const std::string &line : which) lines << QStringLiteral("  ") + toQt(line);
    if (which.empty()) lines << QStringLiteral("  none");
}

}  // namespace

QString withoutHome(const QString &text, const QString &home) {
    if (home.size() < 2) return text;
    static const QString ends = QStringLiteral("\n\"'<>,;");
    QString clean;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype found = text.indexOf(home, at);
        qsizetype end = found < 0 ? text.size() : found + home.size();
        clean += QStringView(text).mid(at, (found < 0 ? text.size() : found) - at);
        const bool isWhole = found >= 0 && (end == text.size() || !text[end].isLetterOrNumber());
        if (isWhole) {
            while (end < text.size() && !ends.contains(text[end])) end++;
            clean += QStringLiteral("~/...");
        } else if (found >= 0) {
            clean += home;
        }
        at = end;
    }
    return clean;
}

QString withoutSerialNumbers(const QString &text) {
    // The system names an adapter by maker, product and serial number: usb-FTDI_USB_Serial_A9KQ2-if00-port0.
    static const QRegularExpression number(QStringLiteral("(/serial/by-id/[^\\s]*_)[^_\\s]+(-if[0-9]+)"));
    return QString(text).replace(number, QStringLiteral("\\1...\\2"));
}

QString reportText(const std::vector<std::string> &before) {
    QStringList lines{QStringLiteral("Numalink report")};
    addHead(lines, QStringLiteral("Program"));
    addProgram(lines);
    addHead(lines, QStringLiteral("System"));
    addSystem(lines);
    addLibrary(lines);
    addHead(lines, QStringLiteral("Settings"));
    for (const Setting &row : settingsAll())
        if (row.key != setting::windowPlace && !isPanePlace(row.key))
            addFact(lines, row.key.c_str() + row.key.rfind('.') + 1, toQt(row.value));
    if (!before.empty()) {
        addHead(lines, QStringLiteral("Events of the run before, which didn't end by itself"));
        addLines(lines, before);
    }
    addHead(lines, QStringLiteral("Events"));
    addLines(lines, eventLines());
    if (const std::vector<std::string> wire = wireTraceLast(); !wire.empty()) {
        addHead(lines, QStringLiteral("Wire"));
        addLines(lines, wire);
    }
    const QString text = withoutSerialNumbers(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    return withoutHome(text, QDir::cleanPath(QFile::decodeName(homeFolder().c_str())));
}

}  // namespace numalink
