// make_dot_font DRAWINGS.txt FONT.cft: the calculators' dot fonts as the program reads them.
// large: 35 bytes a glyph, column by column, 1 a dot. small: the width, then 5 bytes a column, 0 a dot.
#include "dot_drawings.h"

namespace {

std::string largeFont(const tool::Drawings &drawings) {
    std::string bytes;
    for (const tool::Glyph &glyph : drawings.glyphs) {
        for (std::size_t column = 0; column < 5; column++) {
            for (std::size_t row = 0; row < drawings.rowCount(); row++) bytes += glyph.dot(column, row) ? '\1' : '\0';
        }
    }
    return bytes;
}

std::string smallFont(const tool::Drawings &drawings) {
    std::string bytes;
    for (const tool::Glyph &glyph : drawings.glyphs) {
        bytes += static_cast<char>(glyph.width());
        for (std::size_t column = 0; column < glyph.width(); column++) {
            for (std::size_t row = 0; row < drawings.rowCount(); row++) bytes += glyph.dot(column, row) ? '\0' : '\1';
        }
    }
    return bytes;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) tool::fault("make_dot_font", 0, "usage: make_dot_font DRAWINGS.txt FONT.cft");
    const tool::Drawings drawings = tool::readDrawings(argv[1]);
    tool::writeFile(argv[2], drawings.large ? largeFont(drawings) : smallFont(drawings));
    return 0;
}
