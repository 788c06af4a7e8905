#include "flatfile/field_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "flatfile/moment.h"
#include "flatfile/problem.h"
#include "flatfile/scaled_number.h"
#include "frame/format/patterns.h"
#include "frame/value/conversion.h"
#include "frame/value/number_reading.h"
#include "frame/value/number_text.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

namespace tovalin::flat {
namespace {

// With "." as its decimal point, whatever the locale.
template <class Number>
std::string NumberText(Number number) {
  Text ordinary;
  AppendNumber(ordinary, number);
  std::ranges::replace(ordinary, CurrentLocale().decimal_separator, u'.');
  std::string text(ordinary.begin(), ordinary.end());
  Number read{};
  const char* end = text.data() + text.size();
  if (std::from_chars(text.data(), end, read).ptr == end && read == number) return text;
  std::array<char, 32> buffer;
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

std::string Encoded(const Encoder& encoder, char16_t c) {
  std::string bytes;
  encoder.Append(bytes, TextView(&c, 1));
  return bytes;
}

void AppendTimes(std::string& record, std::size_t count, const std::string& fill) {
  if (fill.size() == 1)
    record.append(count, fill[0]);
  else
    for (; count > 0; --count) record += fill;
}

bool IsNothing(const Variant& value) {
  return value.Is(Subtype::Null) || value.Is(Subtype::Empty) || value.IsMissing();
}

}  // namespace

FieldWriter::FieldWriter(const Layout& layout, const FieldLayout& field)
    : layout_(layout),
      field_(field),
      encoder_(layout),
      value_text_(TextView()),
      fill_(Encoded(encoder_, field.fill)),
      mark_(Encoded(encoder_, field.mark)) {
  if (field.IsMoment()) pattern_ = ParseDatePattern(field.pattern);
  for (const char16_t c : {u'\n', u'\r', layout.delimiter, layout.quote})
    if (c != 0 && !layout.fixed) breaks_[c] = true;  // checked to be ASCII
}

void FieldWriter::Append(std::string& record, const Variant& value) {
  bytes_.clear();
  last_amount_ = 0;
  is_null_ = IsNothing(value);
  if (is_null_) {
    if (field_.required) throw Problem{"el campo es obligatorio y no tiene valor"};
    length_ = encoder_.Append(bytes_, field_.null_text);
  } else if (field_.IsNumber()) {
    FormNumber(value);
  } else if (field_.IsMoment()) {
    FormMoment(value);
  } else if (field_.type == FieldType::Logical) {
    FormLogical(value);
  } else {
    FormText(value);
  }
  if (!is_null_ && !field_.null_text.empty() &&
      field_.null_text == Decode(bytes_, layout_.encoding))
    throw Problem{"se leería como un valor nulo"};
  if (!field_.allowed.empty() && !is_null_) RequireAllowed();
  if (layout_.fixed)
    AppendFixed(record);
  else
    AppendDelimited(record);
}

void FieldWriter::RequireAllowed() const {
  const Text text = Decode(bytes_, layout_.encoding);
  if (std::ranges::find(field_.allowed, text) == field_.allowed.end())
    throw Problem{"no está entre los valores permitidos"};
}

void FieldWriter::FormText(const Variant& value) {
  if (value.Is(Subtype::Double) && !(std::fabs(value.AsDouble()) < kWholeLimit))
    throw Problem{"el número tiene más dígitos de los que su texto guarda"};
  TextView text = value_text_.Plain(value);
  if (text.empty()) {
    if (field_.required) throw Problem{"el campo es obligatorio y no tiene valor"};
    length_ = 0;
    return;
  }
  if (field_.letter_case != LetterCase::AsIs)
    text = cased_ = field_.letter_case == LetterCase::Upper ? ToUpper(text) : ToLower(text);
  // A reader takes the fill off again. Blanks at the end belong to nobody.
  if (layout_.fixed && field_.fill != u' ' &&
      (field_.IsRight() ? text.front() : text.back()) == field_.fill)
    throw Problem{"el texto comienza o termina con el carácter de relleno"};
  length_ = encoder_.Append(bytes_, text);
}

void FieldWriter::FormLogical(const Variant& value) {
  const auto is = [&](const Text& text, TextView word) {
    return value.Is(Subtype::String) &&
           (value.AsText() == text || EqualFolded(value.AsText(), word));
  };
  const bool is_boolean = value.Is(Subtype::Boolean);
  const bool is_true = is(field_.true_text, u"True");
  if (!is_boolean && !is_true && !is(field_.false_text, u"False"))
    throw Problem{"no es un valor lógico"};
  const bool truth = is_boolean ? value.AsBoolean() : is_true;
  length_ = encoder_.Append(bytes_, truth ? field_.true_text : field_.false_text);
}

void FieldWriter::FormNumber(const Variant& value) {
  if (!field_.pattern.empty()) return FormByPattern(value);
  if (field_.type == FieldType::Number && !field_.decimals) return FormDouble(value);
  const int decimals = field_.decimals.value_or(0);
  const ScaledNumber number = Scale(value, decimals);
  switch (number.state) {
    case ScaledNumber::State::NotANumber:
      throw Problem{"no es un número"};
    case ScaledNumber::State::TooLarge:
      throw Problem{"el número es demasiado grande"};
    case ScaledNumber::State::Rounded:
      if (field_.rounds) break;
      throw Problem{decimals == 0 ? "tiene decimales y el campo es entero"
                                  : "tiene más de " + std::to_string(decimals) + " decimales"};
    default:
      break;
  }
  FormScaled(number.units);
}

void FieldWriter::FormScaled(std::int64_t units) {
  const int decimals = field_.decimals.value_or(0);
  if (decimals <= kCurrencyDecimals) {
    const ScaledNumber amount = Rescale(units, decimals, kCurrencyDecimals);
    if (amount.state == ScaledNumber::State::TooLarge)
      throw Problem{"el importe es demasiado grande"};
    last_amount_ = amount.units;
  }
  const bool negative = units < 0;
  if (negative && field_.sign == Sign::None) throw Problem{"es negativo y el campo no lleva signo"};
  const std::uint64_t magnitude =
      negative ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
  const char mark = negative ? '-' : field_.plus ? '+' : '\0';
  const bool front = field_.sign == Sign::Front && mark != '\0';
  // Fixed fields keep a place for a sign behind; nothing else would line up.
  const bool behind = field_.sign == Sign::Behind && (mark != '\0' || layout_.fixed);
  std::size_t zeros = layout_.fixed && field_.fill == u'0' && field_.IsRight() ? field_.width : 0;
  if (zeros > 0 && (front || behind)) --zeros;
  if (front) bytes_ += mark;
  AppendDigits(bytes_, magnitude, {decimals, field_.implied, field_.decimal_point, field_.group},
               zeros);
  if (behind) bytes_ += mark == '\0' ? ' ' : mark;
  if (field_.sign == Sign::Zone) {
    char& last = bytes_.back();
    last = (negative ? kNegativeZone : kPositiveZone)[static_cast<std::size_t>(last - '0')];
  }
  length_ = bytes_.size();
}

// The ordinary text where it tells the number, else the shortest that does.
void FieldWriter::FormDouble(const Variant& value) {
  if (Scale(value, 0).state == ScaledNumber::State::NotANumber) throw Problem{"no es un número"};
  const double number = ToDouble(value);
  const bool is_amount = value.Is(Subtype::Currency);
  if ((is_amount && CurrencyOf(number) != value.AsCurrency()) ||
      (value.Is(Subtype::String) && ScanNumber(value.AsText()).decimal.count > kDoubleDigits))
    throw Problem{"tiene más dígitos de los que el campo guarda"};
  if (number < 0 && field_.sign == Sign::None)
    throw Problem{"es negativo y el campo no lleva signo"};
  bytes_ = value.Is(Subtype::Single) ? NumberText(value.AsSingle()) : NumberText(number);
  if (field_.decimal_point != u'.')
    std::ranges::replace(bytes_, '.', static_cast<char>(field_.decimal_point));
  length_ = bytes_.size();
}

// What a pattern shows must read as the same amount.
void FieldWriter::FormByPattern(const Variant& value) {
  const ScaledNumber number = Scale(value, kCurrencyDecimals);
  if (number.state == ScaledNumber::State::NotANumber) throw Problem{"no es un número"};
  if (number.state == ScaledNumber::State::TooLarge)
    throw Problem{"el importe es demasiado grande"};
  text_ = Format(value, field_.pattern);
  if (number.state == ScaledNumber::State::Rounded ||
      ScanNumber(text_).form != NumberText::Form::Decimal ||
      ToCurrency(Variant(text_)).ten_thousandths != number.units)
    throw Problem{"el patrón no muestra el número completo"};
  last_amount_ = number.units;
  length_ = encoder_.Append(bytes_, text_);
}

void FieldWriter::FormMoment(const Variant& value) {
  const bool is_text = value.Is(Subtype::String);
  if (!value.Is(Subtype::Date) && !(is_text && IsDate(value)))
    throw Problem{"no es una fecha ni una hora"};
  const Date moment = is_text ? ToDate(value) : value.AsDate();
  if (last_moment_ != moment) {
    last_moment_.reset();
    text_.clear();
    AppendDate(text_, pattern_, moment);
    const std::optional<Date> read = ReadMoment(pattern_, text_);
    constexpr double kHalfSecond = 0.5 / 86400;
    // The patterns show seconds; the library reads no finer.
    if (!read || std::fabs(read->days - moment.days) > kHalfSecond)
      throw Problem{"el patrón no muestra la fecha o la hora completa"};
    last_moment_ = moment;
  }
  length_ = encoder_.Append(bytes_, text_);
}

void FieldWriter::AppendFixed(std::string& record) {
  if ((field_.type == FieldType::Text || is_null_) &&
      bytes_.find_first_of("\r\n") != std::string::npos)
    throw Problem{"el texto tiene un fin de línea"};
  if (field_.width == 0) {
    record += bytes_;
    return;
  }
  if (length_ > field_.width) return AppendMisfit(record);
  const std::size_t missing = field_.width - length_;
  // Zeros would make an amount of what is none.
  static const std::string kBlank = " ";
  const std::string& fill = bytes_.empty() && field_.fill == u'0' ? kBlank : fill_;
  if (field_.IsRight()) AppendTimes(record, missing, fill);
  record += bytes_;
  if (!field_.IsRight()) AppendTimes(record, missing, fill);
}

void FieldWriter::AppendMisfit(std::string& record) const {
  const std::size_t surplus = length_ - field_.width;
  const auto bytes_of = [&](std::size_t count) { return BytesOf(bytes_, count, layout_.encoding); };
  switch (field_.misfit) {
    case Misfit::CutRight:
      record.append(bytes_, 0, bytes_of(field_.width));
      break;
    case Misfit::CutLeft:
      record.append(bytes_, bytes_of(surplus));
      break;
    case Misfit::Mark:
      AppendTimes(record, field_.width, mark_);
      break;
    case Misfit::Refuse:
      throw Problem{"ocupa " + std::to_string(length_) + " caracteres y el campo es de " +
                    std::to_string(field_.width)};
  }
}

void FieldWriter::AppendDelimited(std::string& record) {
  const auto quote = static_cast<char>(layout_.quote);
  const bool breaks = std::ranges::any_of(
      bytes_, [this](char c) { return breaks_[static_cast<unsigned char>(c)]; });
  const bool is_text = field_.type == FieldType::Text;
  // An empty text is no Null, and only quotes tell.
  const bool quoted = !is_null_ && layout_.quote != 0 &&
                      (breaks || layout_.quotes == QuoteUse::Always ||
                       (is_text && (bytes_.empty() || layout_.quotes == QuoteUse::Texts)));
  if (!quoted) {
    if (breaks) throw Problem{"el texto tiene el separador o un fin de línea y va sin comillas"};
    record += bytes_;
    return;
  }
  record += quote;
  for (const char c : bytes_) {
    if (c == quote) {
      if (!layout_.doubled) throw Problem{"el texto tiene la comilla, que no se dobla"};
      record += c;
    }
    record += c;
  }
  record += quote;
}

}  // namespace tovalin::flat
