#include "flatfile/encoding.h"

#include <algorithm>
#include <iterator>

#include "flatfile/problem.h"
#include "frame/text/characters.h"
#include "frame/text/code_page.h"
#include "frame/text/utf8.h"

namespace tovalin::flat {
namespace {

// The letters of Latin-1 and of code page 1252 with what they are without accents, and
// the marks that have a plain form. Each is one character, so that widths stay.
constexpr TextView kAccented =
    u"ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÑÒÓÔÕÖØÙÚÛÜÝŸŠŽàáâãäåçèéêëìíîïñòóôõöøùúûüýÿšž"
    u"ºª\u2018\u2019\u201C\u201D\u2013\u2014\u00A0";
constexpr TextView kUnaccented =
    u"AAAAAACEEEEIIIINOOOOOOUUUUYYSZaaaaaaceeeeiiiinoooooouuuuyysz"
    u"oa''\"\"-- ";
static_assert(kAccented.size() == kUnaccented.size());

}  // namespace

bool IsSingleByte(Encoding encoding) {
  return encoding != Encoding::Utf8 && encoding != Encoding::Utf8Mark;
}

char16_t Unaccented(char16_t c) {
  const std::size_t place = kAccented.find(c);
  return place == TextView::npos ? c : kUnaccented[place];
}

bool Encoder::Has(char16_t c) const {
  if (c < 0x80) return true;
  if (encoding_ == Encoding::CodePage1252) return InCodePage(c);
  return encoding_ == Encoding::Latin1 && c <= 0xFF;
}

char Encoder::ByteOf(char16_t c) const {
  return encoding_ == Encoding::CodePage1252 ? ToCodePage(c) : static_cast<char>(c);
}

char16_t Encoder::Substitute(char16_t c) const {
  const char16_t plain = unencodable_ == Unencodable::Unaccent ? Unaccented(c) : c;
  if (Has(plain)) return plain;
  if (unencodable_ == Unencodable::Replace) return replacement_;
  throw Problem{"el carácter " + Quoted(TextView(&c, 1)) + " no existe en la codificación"};
}

std::size_t Encoder::Append(std::string& bytes, TextView text) const {
  // Most texts are plain: they are copied before anything is asked of them.
  const std::size_t start = bytes.size();
  bytes.resize(start + text.size());
  char* target = bytes.data() + start;
  char16_t all = 0;
  for (const char16_t c : text) {
    all |= c;
    *target++ = static_cast<char>(c);
  }
  if (all < 0x80) return text.size();
  bytes.resize(start);
  return IsSingleByte(encoding_) ? AppendSlowly(bytes, text) : AppendUnicode(bytes, text);
}

std::size_t Encoder::AppendSlowly(std::string& bytes, TextView text) const {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i, ++count) {
    const char16_t c = text[i];
    bytes += ByteOf(Has(c) ? c : Substitute(c));
    // The halves of a pair are one character to whoever reads the text.
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) ++i;
  }
  return count;
}

std::size_t Encoder::AppendUnicode(std::string& bytes, TextView text) const {
  std::size_t count = text.size();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsUnpairedSurrogate(text, i)) throw Problem{"el texto tiene medio carácter de un par"};
    if (!IsHighSurrogate(text[i])) continue;
    --count;
    ++i;
  }
  AppendUtf8(bytes, text);
  return count;
}

Text Decode(std::string_view bytes, Encoding encoding) {
  if (std::ranges::all_of(bytes, IsAscii)) return Text(bytes.begin(), bytes.end());
  if (encoding == Encoding::Ascii) throw Problem{"hay bytes que no son ASCII"};
  if (!IsSingleByte(encoding)) {
    if (ValidUtf8Length(bytes) != bytes.size()) throw Problem{"hay bytes que no son UTF-8"};
    return FromUtf8(bytes);
  }
  Text text(bytes.size(), u'\0');
  const bool page = encoding == Encoding::CodePage1252;
  std::ranges::transform(bytes, text.begin(), [page](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return page ? FromCodePage(byte) : static_cast<char16_t>(byte);
  });
  return text;
}

std::size_t CountCharacters(std::string_view bytes, Encoding encoding) {
  return IsSingleByte(encoding) ? bytes.size() : CountUtf8Characters(bytes);
}

std::size_t BytesOf(std::string_view bytes, std::size_t count, Encoding encoding) {
  if (IsSingleByte(encoding)) return std::min(count, bytes.size());
  std::size_t at = 0;
  while (at < bytes.size() && (count > 0 || IsUtf8Continuation(bytes[at])))
    if (!IsUtf8Continuation(bytes[at++])) --count;
  return at;
}

}  // namespace tovalin::flat
