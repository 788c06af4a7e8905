#include "flatfile/field_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "flatfile/encoding.h"
#include "flatfile/field_writer.h"
#include "flatfile/moment.h"
#include "flatfile/problem.h"
#include "frame/value/number_reading.h"
#include "tovalin/convert.h"

namespace tovalin::flat {
namespace {

constexpr std::string_view kNoNumber = "no es un número del campo";

std::string_view Stripped(std::string_view bytes, char c, bool front, bool back) {
  while (front && bytes.starts_with(c)) bytes.remove_prefix(1);
  while (back && bytes.ends_with(c)) bytes.remove_suffix(1);
  return bytes;
}

// Both parts of the division are exact for all that a Double shows.
double AsDouble(std::int64_t units, int decimals) {
  for (; decimals > 0 && units % 10 == 0; --decimals) units /= 10;
  double power = 1;
  for (; decimals > 0; --decimals) power *= 10;
  return static_cast<double>(units) / power;
}

[[noreturn]] void RejectNumber() { throw Problem{std::string(kNoNumber)}; }

std::string Encoded(const Layout& layout, const Text& text) {
  std::string bytes;
  Encoder(layout).Append(bytes, text);
  return bytes;
}

}  // namespace

FieldReader::FieldReader(const Layout& layout, const FieldLayout& field)
    : layout_(layout),
      field_(field),
      null_(Encoded(layout, field.null_text)),
      true_(Encoded(layout, field.true_text)),
      false_(Encoded(layout, field.false_text)) {
  if (field.IsMoment()) pattern_ = ParseDatePattern(field.pattern);
}

// What the writer filled up; blanks at both ends of what is no text.
std::string_view FieldReader::WithoutFill(std::string_view bytes) const {
  if (!layout_.fixed) return bytes;
  const bool is_text = field_.type == FieldType::Text;
  const bool right = field_.IsRight();
  // The zeros in front of a number are read with it.
  if (field_.fill != u' ' && (is_text || field_.fill != u'0'))
    bytes = Stripped(bytes, static_cast<char>(field_.fill), right, !right);
  return Stripped(bytes, ' ', right || !is_text, !right || !is_text);
}

Variant FieldReader::Read(const Slice& slice) {
  last_amount_ = 0;
  Variant value = ReadWithoutCheck(slice);
  if (field_.required &&
      (value.Is(Subtype::Null) || (value.Is(Subtype::String) && value.AsText().empty())))
    throw Problem{"el campo es obligatorio y no tiene valor"};
  if (!field_.allowed.empty() && !value.Is(Subtype::Null)) {
    const Text text = Decode(WithoutFill(slice.bytes), layout_.encoding);
    if (std::ranges::find(field_.allowed, text) == field_.allowed.end())
      throw Problem{"no está entre los valores permitidos"};
  }
  return value;
}

Variant FieldReader::ReadWithoutCheck(const Slice& slice) {
  const std::string_view bytes = WithoutFill(slice.bytes);
  if (!slice.quoted && bytes == null_) return Variant::Null();
  if (field_.IsNumber()) return ReadNumber(bytes);
  if (field_.type == FieldType::Text) return Decode(bytes, layout_.encoding);
  if (field_.type == FieldType::Logical) {
    if (bytes != true_ && bytes != false_) throw Problem{"no es un valor lógico del campo"};
    return bytes == true_;
  }
  const std::optional<Date> moment = ReadMoment(pattern_, Decode(bytes, layout_.encoding));
  if (!moment) throw Problem{"no es una fecha o una hora con el patrón del campo"};
  return *moment;
}

Variant FieldReader::ReadNumber(std::string_view bytes) {
  if (!field_.pattern.empty()) return ReadByPattern(bytes);
  if (field_.type == FieldType::Number && !field_.decimals) return ReadDouble(bytes);
  const int decimals = field_.decimals.value_or(0);
  const ScaledNumber number = ReadScaled(bytes);
  if (number.state != ScaledNumber::State::Exact)
    throw Problem{"el número tiene más dígitos de los que se pueden leer"};
  if (decimals > kCurrencyDecimals) return AsDouble(number.units, decimals);
  const ScaledNumber amount = Rescale(number.units, decimals, kCurrencyDecimals);
  if (amount.state != ScaledNumber::State::Exact) throw Problem{"el importe es demasiado grande"};
  last_amount_ = amount.units;
  using Limits = std::numeric_limits<std::int32_t>;
  if (field_.type == FieldType::Whole && number.units >= Limits::min() &&
      number.units <= Limits::max())
    return static_cast<std::int32_t>(number.units);
  return Currency{amount.units};
}

// Takes the sign off in the field's way and reads the digits.
ScaledNumber FieldReader::ReadScaled(std::string_view bytes) const {
  bool negative = false;
  std::array<char, 64> zoned;  // digits with the last one in plain
  if (field_.sign == Sign::Front && !bytes.empty() && (bytes[0] == '-' || bytes[0] == '+')) {
    negative = bytes[0] == '-';
    bytes.remove_prefix(1);
  } else if (field_.sign == Sign::Behind && !bytes.empty() &&
             (bytes.back() == '-' || bytes.back() == '+')) {
    negative = bytes.back() == '-';
    bytes.remove_suffix(1);
  } else if (field_.sign == Sign::Zone && !bytes.empty() && bytes.size() <= zoned.size()) {
    std::ranges::copy(bytes, zoned.begin());
    char& last = zoned[bytes.size() - 1];
    const std::size_t positive = kPositiveZone.find(last);
    const std::size_t below = kNegativeZone.find(last);
    negative = below != std::string_view::npos;
    if (negative) last = static_cast<char>('0' + below);
    if (positive != std::string_view::npos) last = static_cast<char>('0' + positive);
    bytes = {zoned.data(), bytes.size()};
  }
  ScaledNumber number;
  const NumberForm form{field_.decimals.value_or(0), field_.implied, field_.decimal_point,
                        field_.group};
  if (!ReadDigits(bytes, form, negative, number)) RejectNumber();
  return number;
}

Variant FieldReader::ReadDouble(std::string_view bytes) const {
  std::string text(bytes);
  if (field_.decimal_point != u'.') {
    if (text.find('.') != std::string::npos) RejectNumber();
    std::ranges::replace(text, static_cast<char>(field_.decimal_point), '.');
  }
  if (text.starts_with('+')) text.erase(0, 1);
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size() || !std::isfinite(value))
    RejectNumber();
  return value;
}

Variant FieldReader::ReadByPattern(std::string_view bytes) {
  const Text text = Decode(bytes, layout_.encoding);
  if (ScanNumber(text).form != NumberText::Form::Decimal) RejectNumber();
  const ScaledNumber number = Scale(Variant(text), kCurrencyDecimals);
  if (number.state != ScaledNumber::State::Exact) RejectNumber();
  last_amount_ = number.units;
  return Currency{number.units};
}

}  // namespace tovalin::flat
