#include "formatting/amount_tokens.h"

#include <algorithm>

#include "formatting/filled_lines.h"
#include "frame/text/characters.h"

namespace tovalin {
namespace {

using Kind = AmountToken::Kind;

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == kNoBreakSpace; }

bool IsFraction(TextView chunk) {
  return chunk.size() == 6 && IsDigit(chunk[0]) && IsDigit(chunk[1]) && chunk.substr(2) == u"/100";
}

/// The last dot of "M.N." may be part of what fills the line.
bool IsMark(TextView chunk) {
  return EqualFolded(chunk, u"m/cte") || EqualFolded(chunk, u"m.n") || EqualFolded(chunk, u"m.n.");
}

AmountToken TokenOf(TextView chunk, std::size_t position) {
  AmountToken token{Kind::Word, {}, 0, chunk, position};
  if (std::all_of(chunk.begin(), chunk.end(), IsLetter)) {
    token.word = LookUpNumeral(chunk);
  } else if (IsFraction(chunk)) {
    token.kind = Kind::Fraction;
    token.cents = 10 * (chunk[0] - u'0') + (chunk[1] - u'0');
  } else {
    token.kind = IsMark(chunk) ? Kind::Mark : Kind::Unknown;
  }
  return token;
}

bool Fills(char16_t c) { return IsBlank(c) || IsFiller(TextView(&c, 1)); }

void ScanLine(TextView text, std::size_t begin, std::size_t end, std::vector<AmountToken>& tokens) {
  while (end > begin && Fills(text[end - 1])) --end;
  while (begin < end) {
    if (IsBlank(text[begin])) {
      ++begin;
      continue;
    }
    std::size_t next = begin;
    while (next < end && !IsBlank(text[next])) ++next;
    tokens.push_back(TokenOf(text.substr(begin, next - begin), begin));
    begin = next;
  }
}

}  // namespace

std::vector<AmountToken> ScanAmount(TextView text) {
  std::vector<AmountToken> tokens;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find_first_of(u"\r\n", begin), text.size());
    ScanLine(text, begin, end, tokens);
    begin = end + 1;
  }
  tokens.push_back({Kind::End, {}, 0, {}, text.size()});
  return tokens;
}

}  // namespace tovalin
