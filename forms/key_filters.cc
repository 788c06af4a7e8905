#include "forms/key_filters.h"

#include "frame/text/code_page.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

constexpr std::int32_t kNoKey = 0;
constexpr std::int32_t kBackspace = 8;
constexpr std::int32_t kKeypadZero = 96;
constexpr std::int32_t kKeypadNine = 105;
constexpr std::int32_t kKeypadDecimal = 110;

bool IsEditingKey(std::int32_t key) { return key == kNoKey || key == kBackspace; }

Text ApplyEditingKey(TextView text, std::int32_t key) {
  if (key == kBackspace && !text.empty()) text.remove_suffix(1);
  return Text(text);
}

// The character that a key adds to a number, or 0.
char16_t NumberCharacter(std::int32_t key) {
  if (key >= u'0' && key <= u'9') return static_cast<char16_t>(key);
  if (key >= kKeypadZero && key <= kKeypadNine)
    return static_cast<char16_t>(u'0' + (key - kKeypadZero));
  return key == kKeypadDecimal || key == u'.' ? u'.' : u'\0';
}

}  // namespace

std::int16_t FilterKey(std::int16_t key, TextView accepted) {
  const auto character = static_cast<char16_t>(key);
  return accepted.find(character) == TextView::npos ? std::int16_t{0} : key;
}

Text AddText(TextView text, std::int32_t key) {
  if (IsEditingKey(key)) return ApplyEditingKey(text, key);
  if (key < 0 || key > 255) Raise(Failure::InvalidArgument);
  return Text(text) + FromCodePage(static_cast<unsigned char>(key));
}

Text AddNumber(TextView text, std::int32_t key) {
  if (IsEditingKey(key)) return ApplyEditingKey(text, key);
  const char16_t character = NumberCharacter(key);
  const bool second_point = character == u'.' && text.find(u'.') != TextView::npos;
  Text changed(text);
  if (character != u'\0' && !second_point) changed += character;
  return changed;
}

}  // namespace tovalin
