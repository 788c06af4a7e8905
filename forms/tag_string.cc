#include "forms/tag_string.h"

#include "tovalin/error.h"

namespace tovalin {
namespace {

// Where the search for a field ended. The last field that was passed is
// [begin, end), and a separator stands at `end`.
struct Search {
  std::size_t fields_passed = 0;
  std::size_t begin = 0;
  std::size_t end = 0;
};

// Passes fields until `index` of them are behind or no separator is left, but
// looks for a first one in any case.
Search FindField(TextView tag, std::uint8_t index, char16_t separator) {
  Search search;
  std::size_t next = 0;
  do {
    const std::size_t found = tag.find(separator, next);
    if (found == TextView::npos) break;
    ++search.fields_passed;
    search.begin = next;
    search.end = found;
    next = found + 1;
  } while (search.fields_passed < index);
  return search;
}

// Index 0 counts as found where no field was passed, before the start of the
// tag. Deliberate: hosts rely on the error to notice a tag that was never filled.
void RequireField(const Search& search) {
  if (search.fields_passed == 0) Raise(Failure::InvalidArgument);
}

}  // namespace

TextView GetTag(TextView tag, std::uint8_t index, char16_t separator) {
  const Search search = FindField(tag, index, separator);
  if (search.fields_passed != index || tag.empty()) return {};
  RequireField(search);
  return tag.substr(search.begin, search.end - search.begin);
}

Text LetTag(TextView tag, std::uint8_t index, TextView value, char16_t separator) {
  const Search search = FindField(tag, index, separator);
  if (search.fields_passed != index) return Text(tag);
  RequireField(search);
  Text changed(tag.substr(0, search.begin));
  changed.append(value).append(tag.substr(search.end));
  return changed;
}

}  // namespace tovalin
