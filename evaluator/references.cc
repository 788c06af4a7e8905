#include "evaluator/engine.h"

namespace tovalin {
namespace {

// The length of the name at the start of `text`: up to a blank, a quote or one of
// the characters that no name contains.
std::size_t NameLength(TextView text, const Collection& special) {
  std::size_t length = 0;
  for (; length < text.size(); ++length) {
    const char16_t c = text[length];
    if (c <= u' ' || c == u'"' || c == u'\'') break;
    const bool plain = c > 0x7F || (FoldCase(c) >= u'a' && FoldCase(c) <= u'z') ||
                       (c >= u'0' && c <= u'9') || c == u'_';
    if (!plain && special.List().Find(text.substr(length, 1)) != KeyedList<Variant>::kNotFound)
      break;
  }
  return length;
}

// The end of the literal that begins at `start`, or npos when none begins there
// or it does not end.
std::size_t LiteralEnd(TextView text, std::size_t start, TextView delimiter) {
  const TextView rest = text.substr(start);
  const TextView opening = rest.starts_with(u'"') ? TextView(u"\"") : delimiter;
  if (opening.empty() || !rest.starts_with(opening)) return TextView::npos;
  const std::size_t close = text.find(opening, start + opening.size());
  return close == TextView::npos ? text.size() : close + opening.size();
}

}  // namespace

Text Engine::ReplaceReferences(const Text& formula, const Campos* locals) const {
  if (formula.find(u'@') == Text::npos) return formula;
  Text replaced;
  replaced.reserve(formula.size());
  const TextView text = formula;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t end = LiteralEnd(text, i, symbols_.string_delimiter);
    if (end != TextView::npos) {
      replaced.append(text.substr(i, end - i));
      i = end;
      continue;
    }
    if (text[i] == u'@') {
      const TextView name =
          text.substr(i + 1, NameLength(text.substr(i + 1), *symbols_.special_characters));
      const bool known = (locals && locals->Find(name)) || symbols_.Find(name);
      if (!name.empty() && known) ++i;
    }
    replaced.push_back(text[i++]);
  }
  return replaced;
}

}  // namespace tovalin
