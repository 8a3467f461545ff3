#include "shell/help/manual_pages.h"

#include "platform/files.h"
#include "platform/program_folder.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr std::uint64_t pageLimit = std::uint64_t{1024} * 1024;         // bytes
constexpr std::uint64_t pictureLimit = std::uint64_t{4} * 1024 * 1024;  // bytes

constexpr const char *pageNames[] = {
    "first-steps", "library", "finding",       "editing",  "text-form", "running",    keysPageName,
    "debugging",   "files",   "communication", "settings", "trouble",   newsPageName,
};

QByteArray fileOf(const std::string &path, std::uint64_t limit) {
    Bytes bytes;
    if (readWholeFile(path, bytes, limit) != FileResult::done) return {};
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray textOfPage(const std::string &name) {
    const std::string folder = dataPath("help") + "/";
    if (name == newsPageName) return fileOf(folder + "CHANGELOG.md", pageLimit);
    const QByteArray text = fileOf(folder + wording(Text::qtTranslation) + "/" + name + ".md", pageLimit);
    return text.isEmpty() ? fileOf(folder + "en/" + name + ".md", pageLimit) : text;
}

// "First steps" out of "# First steps".
QString titleOf(const QString &text) {
    const QString line = text.left(text.indexOf(QLatin1Char('\n')));
    return line.mid(line.lastIndexOf(QLatin1Char('#')) + 1).trimmed();
}

}  // namespace

std::vector<ManualPage> manualPages() {
    std::vector<ManualPage> pages;
    for (const char *name : pageNames) {
        const QString text = QString::fromUtf8(textOfPage(name));
        if (text.isEmpty()) continue;
        const bool isNews = std::string_view(name) == newsPageName;
        pages.push_back({QString::fromLatin1(name), isNews ? textOf(Text::newsTitle) : titleOf(text), text});
    }
    return pages;
}

QByteArray manualPicture(const QString &fileName) {
    if (fileName.contains(QLatin1Char('/'))) return {};
    return fileOf(dataPath("help") + "/images/" + fileName.toStdString(), pictureLimit);
}

}  // namespace numalink
