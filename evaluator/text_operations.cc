#include "evaluator/text_operations.h"

#include <algorithm>
#include <vector>

#include "evaluator/language.h"
#include "frame/text/characters.h"
#include "frame/text/search.h"
#include "tovalin/error.h"
#include "tovalin/variant.h"

namespace tovalin::evaluator {
namespace {

constexpr std::size_t kNitLength = 15;
// By position, the digit at the right first.
constexpr int kNitWeights[kNitLength] = {3, 7, 13, 17, 19, 23, 29, 37, 41, 43, 47, 53, 59, 67, 71};

constexpr TextView kParticles[] = {u"de", u"del", u"la", u"las", u"los", u"y", u"e"};

/// Raises 7 when `count` more pieces of `size` characters do not fit behind `length`.
void RequireLength(std::size_t length, std::size_t count, std::size_t size) {
  if (length > kLongestText || (size > 0 && count > (kLongestText - length) / size))
    Raise(Failure::OutOfMemory);
}

/// A letter is what has two cases, "Ñ" as well as "N".
bool IsLetter(char16_t c) {
  const TextView text(&c, 1);
  return ToUpper(text) != text || ToLower(text) != text;
}

/// Calls `visit` with the place of every occurrence of `part` in `text`, from
/// left to right and without overlaps.
template <class Visit>
void ForEachPlace(TextView text, TextView part, Visit visit) {
  if (part.empty()) return;
  const TextSearch search(part);
  for (std::size_t place = search.Find(text); place != TextView::npos;
       place = search.Find(text, place + part.size()))
    visit(place);
}

/// Extracts the text up to the first `delimiter` from the front of `rest`, and the
/// delimiter behind it.
TextView ExtractPart(TextView& rest, TextView delimiter) {
  const std::size_t end = delimiter.empty() ? TextView::npos : rest.find(delimiter);
  const TextView part = rest.substr(0, end);
  rest = end == TextView::npos ? TextView() : rest.substr(end + delimiter.size());
  return part;
}

void AppendBracketed(Text& text, TextView part) {
  const bool has_brackets = part.size() >= 2 && part.front() == u'[' && part.back() == u']';
  if (part.empty() || has_brackets)
    text.append(part);
  else
    text.append(u"[").append(part).append(u"]");
}

/// The length of the run of digits that `text` starts with.
std::size_t DigitRun(TextView text) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, IsDigit) - text.begin());
}

struct DigitRuns {
  std::size_t count = 0;
  std::size_t longest = 0;
};

DigitRuns FindDigitRuns(TextView text) {
  DigitRuns runs;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t run = DigitRun(text.substr(i));
    if (run == 0) continue;
    ++runs.count;
    runs.longest = std::max(runs.longest, run);
    i += run - 1;
  }
  return runs;
}

bool IsParticle(TextView word) {
  return std::ranges::any_of(kParticles,
                             [word](TextView particle) { return EqualFolded(word, particle); });
}

}  // namespace

Text ReplaceString(TextView text, TextView macro, TextView replacement) {
  const std::size_t count = CharCount(text, macro);
  const std::size_t kept = text.size() - count * macro.size();
  RequireLength(kept, count, replacement.size());
  Text result;
  result.reserve(kept + count * replacement.size());
  std::size_t taken = 0;
  ForEachPlace(text, macro, [&](std::size_t place) {
    result.append(text.substr(taken, place - taken)).append(replacement);
    taken = place + macro.size();
  });
  return result.append(text.substr(taken));
}

Text Strip(TextView text, TextView part) { return ReplaceString(text, part, {}); }

std::size_t CharCount(TextView text, TextView part) {
  std::size_t count = 0;
  ForEachPlace(text, part, [&count](std::size_t) { ++count; });
  return count;
}

Text Replicate(TextView text, std::int32_t count) {
  if (count < 0) Raise(Failure::InvalidArgument);
  const auto times = static_cast<std::size_t>(count);
  RequireLength(0, times, text.size());
  Text result;
  result.reserve(times * text.size());
  if (text.empty()) return result;
  for (std::size_t i = 0; i < times; ++i) result.append(text);
  return result;
}

Text CSVNextChar(TextView& rest, TextView delimiter, TextView quote) {
  Text field;
  if (!quote.empty() && rest.starts_with(quote)) {
    do {
      rest.remove_prefix(quote.size());
      field.append(ExtractPart(rest, quote));
      if (rest.starts_with(quote)) field.append(quote);
    } while (rest.starts_with(quote));
  }
  return field.append(ExtractPart(rest, delimiter));
}

Text StripNit(TextView nit) {
  Text result;
  for (const char16_t c : nit.substr(0, nit.rfind(u'-')))
    if (IsDigit(c) || IsLetter(c)) result.push_back(c);
  return result;
}

Text DigitoV(TextView nit) {
  if (nit.empty()) return {};
  const TextView number = Trim(nit);
  if (number.size() > kNitLength) Raise(Failure::InvalidArgument);
  int sum = 0;
  for (std::size_t i = 0; i < number.size(); ++i) {
    const char16_t c = number[number.size() - 1 - i];
    if (c >= u'0' && c <= u'9') sum += kNitWeights[i] * (c - u'0');
  }
  const int remainder = sum % 11;
  const int digit = remainder > 1 ? 11 - remainder : remainder;
  return Text(1, static_cast<char16_t>(u'0' + digit));
}

Text RemoveChars(TextView text) {
  Text result(text);
  std::erase_if(result, [](char16_t c) {
    return c == u' ' || c == u'\'' || c == u'"' || kReservedCharacters.find(c) != TextView::npos;
  });
  return result;
}

Text AjustarDigitosGrupo(TextView text) {
  const DigitRuns runs = FindDigitRuns(text);
  RequireLength(text.size(), runs.count, runs.longest);
  Text result;
  while (!text.empty()) {
    if (const std::size_t run = DigitRun(text); run > 0) {
      result.append(runs.longest - run, u'0').append(text.substr(0, run));
      text.remove_prefix(run);
    } else {
      result.push_back(text.front());
      text.remove_prefix(1);
    }
  }
  return result;
}

Text DoAutoBracket(TextView column) {
  // A bracket that is never closed is a character like others.
  const std::size_t last_closing = column.rfind(u']');
  Text result;
  for (std::size_t start = 0;;) {
    const std::size_t first = column.find_first_not_of(u' ', start);
    const bool closed = first != TextView::npos && column[first] == u'[' &&
                        last_closing != TextView::npos && first < last_closing;
    const std::size_t dot = column.find(u'.', closed ? column.find(u']', first) : start);
    AppendBracketed(result, Trim(column.substr(start, dot - start)));
    if (dot == TextView::npos) return result;
    result.push_back(u'.');
    start = dot + 1;
  }
}

TextView WordOfName(TextView full_name, std::uint8_t part) {
  TextView rest = Trim(full_name);
  std::uint8_t words = 0;
  while (!rest.empty() && words < part) {
    const TextView word = ExtractPart(rest, u" ");
    if (!rest.empty() && IsParticle(word)) continue;
    if (++words == part) return word;
  }
  return {};
}

TextView ExtraeRev(TextView text) {
  const TextView trimmed = Trim(text);
  return trimmed.substr(trimmed.rfind(u' ') + 1);
}

const Variant& nvl(const Variant& value, const Variant& default_value) {
  return value.Is(Subtype::Null) ? default_value : value;
}

}  // namespace tovalin::evaluator
