#include "review/date_letters.h"

#include <algorithm>

#include "frame/format/date_pattern.h"
#include "frame/format/named_formats.h"
#include "frame/format/pattern_cache.h"

namespace tovalin::review {
namespace {

// What belongs to a word: "/" and ":" do not, so that "AM/PM" is asked for as a whole.
bool IsLetter(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c >= 0xC0;
}

// Whether tokens alone make up a word ("ddmmyyyy"), and whether any is in it.
struct WordReading {
  bool is_tokens = true;
  bool has_token = false;
};

WordReading Read(TextView word) {
  WordReading reading;
  while (!word.empty()) {
    const DatePattern::Step step = DateTokenAt(word);
    const bool is_token = step.token != DateToken::None && step.token != DateToken::Literal;
    reading.has_token |= is_token;
    reading.is_tokens &= is_token;
    word.remove_prefix(is_token ? std::max<std::size_t>(step.length, 1) : 1);
  }
  return reading;
}

std::size_t WordLength(TextView text) {
  const auto end = std::ranges::find_if_not(text, IsLetter);
  return static_cast<std::size_t>(end - text.begin());
}

// What is escaped, quoted, or one of the spellings of the half of the day with "/".
std::size_t PassedLength(TextView text) {
  if (text.front() == u'\\') return std::min<std::size_t>(2, text.size());
  if (text.front() == u'"') {
    const std::size_t close = text.find(u'"', 1);
    return close == TextView::npos ? text.size() : close + 1;
  }
  const DatePattern::Step step = DateTokenAt(text);
  const bool is_half =
      step.token >= DateToken::UpperMeridiem && step.token <= DateToken::LocaleMeridiem;
  return is_half ? step.length : 0;
}

}  // namespace

std::optional<DateLetters> FindDateLetters(TextView pattern) {
  if (NamedFormat(pattern) || !std::holds_alternative<DatePattern>(*ParsedPattern(pattern)))
    return std::nullopt;
  DateLetters found;
  for (TextView rest = pattern; !rest.empty();) {
    if (const std::size_t passed = PassedLength(rest)) {
      found.escaped.append(rest.substr(0, passed));
      rest.remove_prefix(passed);
      continue;
    }
    const TextView word = rest.substr(0, WordLength(rest));
    if (word.empty()) {
      found.escaped.push_back(rest.front());
      rest.remove_prefix(1);
      continue;
    }
    const WordReading reading = Read(word);
    const bool is_surprise = reading.has_token && !reading.is_tokens;
    if (is_surprise && found.word.empty()) found.word = word;
    for (char16_t c : word) {
      if (is_surprise) found.escaped.push_back(u'\\');
      found.escaped.push_back(c);
    }
    rest.remove_prefix(word.size());
  }
  if (found.word.empty()) return std::nullopt;
  return found;
}

}  // namespace tovalin::review
