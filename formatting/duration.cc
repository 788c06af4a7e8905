#include "formatting/duration.h"

#include <array>

#include "frame/value/number_text.h"

namespace tovalin {
namespace {

struct UnitPieces {
  int seconds;
  TextView short_form;
  TextView one;
  TextView many;
  TextView joiner;  // before the next unit of the long form
};

constexpr std::array<UnitPieces, 4> kUnits = {{{86400, u"d ", u" day", u" days", u", "},
                                               {3600, u"h:", u" hr", u" hrs", u" "},
                                               {60, u"m:", u" min", u" mins", u" "},
                                               {1, u"s", u" sec", u" secs", u""}}};
constexpr std::size_t kSeconds = kUnits.size() - 1;

using Counts = std::array<std::int64_t, kUnits.size()>;

Counts Split(std::int32_t seconds) {
  std::int64_t left = seconds < 0 ? -std::int64_t{seconds} : seconds;
  Counts counts{};
  for (std::size_t i = 0; i < kUnits.size(); ++i) {
    counts[i] = left / kUnits[i].seconds;
    left %= kUnits[i].seconds;
  }
  return counts;
}

Text Sign(std::int32_t seconds) { return seconds < 0 ? u"-" : u""; }

}  // namespace

Text ShortDuration(std::int32_t seconds) {
  const Counts counts = Split(seconds);
  Text text = Sign(seconds);
  std::size_t i = 0;
  while (i < kSeconds && counts[i] == 0) ++i;
  for (; i < kUnits.size(); ++i) {
    const bool days = i == 0;
    if (!days && counts[i] < 10) text += u'0';
    AppendNumber(text, counts[i]);
    text += kUnits[i].short_form;
  }
  return text;
}

Text LongDuration(std::int32_t seconds) {
  if (seconds == 0) return u"0 secs";
  const Counts counts = Split(seconds);
  Text text = Sign(seconds);
  TextView joiner;
  for (std::size_t i = 0; i < kUnits.size(); ++i) {
    if (counts[i] == 0) continue;
    text += joiner;
    AppendNumber(text, counts[i]);
    text += counts[i] == 1 ? kUnits[i].one : kUnits[i].many;
    joiner = kUnits[i].joiner;
  }
  return text;
}

}  // namespace tovalin
