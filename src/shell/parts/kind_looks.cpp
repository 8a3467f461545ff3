#include "shell/parts/kind_looks.h"

#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

// A kind's image, and the word for it that a screen reader says.
struct KindLook {
    const char *image;
    Text word;
};

constexpr KindLook kindLooks[] = {{"program", Text::kindProgram}, {"folder", Text::kindFolder},
                                  {"matrix", Text::kindMatrix},   {"backup", Text::kindBackup},
                                  {"picture", Text::kindPicture}, {"screen", Text::kindScreen},
                                  {"list", Text::kindList},       {"block", Text::kindBlock},
                                  {"unknown", Text::kindUnknown}, {"function", Text::kindFunction}};

const KindLook &lookOf(ItemKind itemKind) { return kindLooks[treeImageOfKind(itemKind)]; }

}  // namespace

QString imageOfKind(ItemKind itemKind) {
    return QStringLiteral(":/images/tree-%1.svg").arg(QString::fromLatin1(lookOf(itemKind).image));
}

QString spokenName(const std::string &name, ItemKind itemKind) {
    return nameToQt(name) + QStringLiteral(", ") + textOf(lookOf(itemKind).word);
}

}  // namespace numalink
