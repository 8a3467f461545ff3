// A program's text into bytes and back, and the exchange words between both. Calculator codes throughout; line
// ends are CR LF in text. Any thread once the tables are loaded.
#pragma once

#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace numalink {

// Appends the tokens of text to tokens. -1, or the place of the first character that nothing fits; tokens then
// holds what came before it.
std::ptrdiff_t lineFromText(std::string_view text, Bytes &tokens);

// The text of an image as its view shows it without colours: line ends CR LF, the display command as 221 CR LF,
// unknown bytes as "<250> " and "<127,80>".
std::string programPlainText(ByteView image);

// Appends what the exchange word at words[place] stands for and gives the characters it takes, 0 when nothing can be
// read there. A line end, CR with or without LF, is 0x0D; a CR right behind another CR adds nothing.
std::size_t readWord(std::string_view words, std::size_t place, Bytes &tokens);

// Exchange words of token bytes, and back. A byte without a word is written as a backslash and the byte; so is a sign
// that would make a longer word with what stands ahead of it, or that would read as a line of a cat file's own:
// "%End", "%Header Record", and at the head of the text "Password:" and "BaseN:".
std::string wordsFromTokens(ByteView tokens);
// -1, or the place where the words can't be read.
std::ptrdiff_t tokensFromWords(std::string_view words, Bytes &tokens);

}  // namespace numalink
