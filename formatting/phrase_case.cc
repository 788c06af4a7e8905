#include "formatting/phrase_case.h"

#include <algorithm>

namespace tovalin {
namespace {

constexpr std::size_t kLongestShortWord = 3;
constexpr std::size_t kLongestUntouchedText = 2;

}  // namespace

Text TipoFrase(TextView vstrWord) {
  Text phrase;
  phrase.reserve(vstrWord.size());
  bool first = vstrWord.size() > kLongestUntouchedText;
  for (std::size_t begin = 0; begin < vstrWord.size();) {
    if (vstrWord[begin] == u' ') {
      phrase += vstrWord[begin++];
      continue;
    }
    const std::size_t end = std::min(vstrWord.find(u' ', begin), vstrWord.size());
    const TextView word = vstrWord.substr(begin, end - begin);
    if (first || word.size() > kLongestShortWord)
      phrase.append(ToUpper(word.substr(0, 1))).append(ToLower(word.substr(1)));
    else
      phrase.append(word);
    first = false;
    begin = end;
  }
  return phrase;
}

}  // namespace tovalin
