// A program's bytes from words as tokens are written, and back, for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "text/program_bytes.h"

namespace numalink {

inline Bytes imageOf(std::string_view words) {
    Bytes image = {':'};
    EXPECT_LT(tokensFromWords(words, image), 0) << words;
    image.push_back(0xFF);
    return image;
}

inline std::string wordsOf(ByteView image) { return wordsFromTokens(image.subspan(1, image.size() - 2)); }

}  // namespace numalink
