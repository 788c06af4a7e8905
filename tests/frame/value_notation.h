#pragma once

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>

#include "tovalin/error.h"
#include "tovalin/variant.h"

namespace tovalin::testing {

// Values as the tables of tests write them: a letter for the subtype, ":" and
// the value. "i:7" Integer, "l:7" Long, "f:0.1" Single, "d:0.1" Double,
// "c:1.5000" Currency with its four decimals, "t:1.25" Date as its day count,
// "b:-1" Boolean, "y:7" Byte, "s:texto" String, "empty" and "null". An error is
// "!" and its number.

template <class T>
T ReadValue(const std::string& digits) {
  T value{};
  const char* end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, value);
  if (read.ec != std::errc() || read.ptr != end) throw std::invalid_argument(digits);
  return value;
}

template <class T>
std::string WriteValue(T value) {
  char buffer[64];
  return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

inline std::string WriteCurrency(Currency value) {
  const bool negative = value.ten_thousandths < 0;
  const auto units = static_cast<std::uint64_t>(value.ten_thousandths);
  std::string digits = WriteValue(negative ? 0 - units : units);
  if (digits.size() < 5) digits.insert(0, 5 - digits.size(), '0');
  digits.insert(digits.size() - 4, ".");
  return (negative ? "-" : "") + digits;
}

inline Variant Value(const std::string& notation) {
  if (notation == "empty") return {};
  if (notation == "null") return Variant::Null();
  std::string digits = notation.substr(2);
  switch (notation[0]) {
    case 'i':
      return ReadValue<std::int16_t>(digits);
    case 'l':
      return ReadValue<std::int32_t>(digits);
    case 'f':
      return ReadValue<float>(digits);
    case 'd':
      return ReadValue<double>(digits);
    case 'c':
      digits.erase(digits.size() - 5, 1);
      return Currency{ReadValue<std::int64_t>(digits)};
    case 't':
      return Date{ReadValue<double>(digits)};
    case 'b':
      return digits != "0";
    case 'y':
      return ReadValue<std::uint8_t>(digits);
    case 's':
      return FromUtf8(digits);
    default:
      throw std::invalid_argument(notation);
  }
}

/// Numbers in the shortest form that reads back, so equal notations are equal
/// to the last bit.
inline std::string Notation(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
      return "empty";
    case Subtype::Null:
      return "null";
    case Subtype::Integer:
      return "i:" + WriteValue(value.AsInteger());
    case Subtype::Long:
      return "l:" + WriteValue(value.AsLong());
    case Subtype::Single:
      return "f:" + WriteValue(value.AsSingle());
    case Subtype::Double:
      return "d:" + WriteValue(value.AsDouble());
    case Subtype::Currency:
      return "c:" + WriteCurrency(value.AsCurrency());
    case Subtype::Date:
      return "t:" + WriteValue(value.AsDate().days);
    case Subtype::String:
      return "s:" + ToUtf8(value.AsText());
    case Subtype::Boolean:
      return value.AsBoolean() ? "b:-1" : "b:0";
    case Subtype::Byte:
      return "y:" + WriteValue(value.AsByte());
    default:
      return "?";
  }
}

/// What `compute` gives: the notation of its value, or of the error it raises.
inline std::string Outcome(const std::function<Variant()>& compute) {
  try {
    return Notation(compute());
  } catch (const Error& error) {
    return "!" + WriteValue(error.number);
  }
}

}  // namespace tovalin::testing
