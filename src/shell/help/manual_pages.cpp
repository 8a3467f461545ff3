#include "shell/help/manual_pages.h"

#include <QStringList>
#include <algorithm>

#include "platform/files.h"
#include "platform/program_folder.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr std::uint64_t pageLimit = std::uint64_t{1024} * 1024;         // bytes
constexpr std::uint64_t pictureLimit = std::uint64_t{4} * 1024 * 1024;  // bytes

constexpr const char *pageNames[] = {
    "first-steps", "library",   "finding", "editing",       "text-form", "running",
    keysPageName,  "debugging", "files",   "communication", "settings",  "trouble",
};

QByteArray fileOf(const std::string &path, std::uint64_t limit) {
    Bytes bytes;
    if (readWholeFile(path, bytes, limit) != FileResult::done) return {};
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray textOfPage(const std::string &name) {
    const std::string folder = dataPath("help") + "/";
    const QByteArray text = fileOf(folder + wording(Text::qtTranslation) + "/" + name + ".md", pageLimit);
    return text.isEmpty() ? fileOf(folder + "en/" + name + ".md", pageLimit) : text;
}

// "First steps" out of "# First steps".
QString titleOf(const QString &text) {
    const QString line = text.left(text.indexOf(QLatin1Char('\n')));
    return line.mid(line.lastIndexOf(QLatin1Char('#')) + 1).trimmed();
}

// The rows of news.tsv: since, page, and a column a language by its code.
QString newsPage(const std::vector<ManualPage> &pages) {
    QString text, since;
    qsizetype column = 0;
    const QString table = QString::fromUtf8(fileOf(dataPath("help") + "/news.tsv", pageLimit));
    for (const QString &line : table.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(QLatin1Char('#'))) continue;
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (column == 0) {
            column = fields.indexOf(textOf(Text::qtTranslation));
            if (column < 0) column = fields.indexOf(QStringLiteral("en"));
            if (column < 0) return {};
            text = QStringLiteral("# ") + textOf(Text::newsTitle) + QLatin1Char('\n');
            continue;
        }
        if (fields.size() <= column) continue;
        if (fields[0] != since)
            text +=
                QStringLiteral("\n## ") + textOf(Text::newsSince, {fields[0].toStdString()}) + QStringLiteral("\n\n");
        since = fields[0];
        text += QStringLiteral("- ") + fields[column];
        const auto page = std::ranges::find(pages, fields[1], &ManualPage::name);
        if (page != pages.end()) text += QStringLiteral(" [%1](%2.md)").arg(page->title, page->name);
        text += QLatin1Char('\n');
    }
    if (text.isEmpty()) return {};
    return text + QStringLiteral("\n[%1](%2)\n").arg(textOf(Text::newsWhole), QLatin1String(allChangesName));
}

}  // namespace

std::vector<ManualPage> manualPages() {
    std::vector<ManualPage> pages;
    for (const char *name : pageNames) {
        const QString text = QString::fromUtf8(textOfPage(name));
        if (!text.isEmpty()) pages.push_back({QString::fromLatin1(name), titleOf(text), text});
    }
    if (const QString news = newsPage(pages); !news.isEmpty())
        pages.push_back({QString::fromLatin1(newsPageName), textOf(Text::newsTitle), news});
    return pages;
}

QString allChanges() { return QString::fromUtf8(fileOf(dataPath("help") + "/CHANGELOG.md", pageLimit)); }

QByteArray manualPicture(const QString &fileName) {
    if (fileName.contains(QLatin1Char('/'))) return {};
    return fileOf(dataPath("help") + "/images/" + fileName.toStdString(), pictureLimit);
}

}  // namespace numalink
