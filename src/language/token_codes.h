// The tokens that the readers of programs ask for by name.
#pragma once

#include "language/reference.h"

namespace numalink::code {

inline constexpr TokenCode displayTriangle = 0x0C, lineEnd = 0x0D, arrow = 0x0E, exponent = 0x0F, conditionArrow = 0x13;
inline constexpr TokenCode quote = '"', remark = '\'', comma = ',', point = '.', colon = ':', semicolon = ';';
inline constexpr TokenCode question = '?', rangeMark = '~', hyphen = '-', quotedMinus = 0x99, plus = 0x89,
                           minusSign = 0x87;
inline constexpr TokenCode openParenthesis = '(', closeParenthesis = ')', openBracket = '[', closeBracket = ']';
inline constexpr TokenCode openBrace = '{', closeBrace = '}', radius = 0xCD, theta = 0xCE;
inline constexpr TokenCode label = 0xE2, isz = 0xE9, dsz = 0xE8, goTo = 0xEC, prog = 0xED;
inline constexpr TokenCode ifWord = 0xF700, then = 0xF701, elseWord = 0xF702, ifEnd = 0xF703, forWord = 0xF704,
                           to = 0xF705, step = 0xF706, next = 0xF707, whileWord = 0xF708, whileEnd = 0xF709,
                           doWord = 0xF70A, loopWhile = 0xF70B, returnWord = 0xF70C, breakWord = 0xF70D, stop = 0xF70E,
                           locate = 0xF710, receive = 0xF712, receive38k = 0xF716, menu = 0xF79E;
inline constexpr TokenCode orange = 0x7F34, green = 0x7F36, matrix = 0x7F40, list = 0x7F51, firstList = 0x7F6A,
                           lastList = 0x7F6F, swapRows = 0x7F45, timesRow = 0x7F42, timesRowPlus = 0x7F43,
                           rowPlus = 0x7F44;

constexpr bool isDigit(TokenCode token) { return token >= '0' && token <= '9'; }
constexpr bool isLetter(TokenCode token) { return token >= 'A' && token <= 'Z'; }
constexpr bool isVariable(TokenCode token) { return isLetter(token) || token == radius || token == theta; }
constexpr bool isColor(TokenCode token) { return token >= orange && token <= green; }

}  // namespace numalink::code
