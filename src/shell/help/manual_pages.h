// The pages of the manual as files: which there are, and their texts. Graphical thread only.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

namespace numalink {

inline constexpr char keysPageName[] = "keys";
inline constexpr char newsPageName[] = "whats-new";  // made of data/help/news.tsv
inline constexpr char allChangesName[] = "CHANGELOG.md";

struct ManualPage {
    QString name;   // of the file, without ".md"
    QString title;  // its first heading
    QString text;   // Markdown
};

// In the order of the manual; those of which no file is there, in this language or in English, are left out.
std::vector<ManualPage> manualPages();

QString allChanges();  // Markdown, in English; empty where the file isn't there

// A picture of the pages, by its file name; empty where there is none.
QByteArray manualPicture(const QString &fileName);

}  // namespace numalink
