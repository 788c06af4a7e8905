#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tovalin {

/// A value of a JSON text. Texts are UTF-8; an object keeps its members in their order.
/// Unlike the trees of JSON libraries it needs no memory to be released.
class Json {
 public:
  using Array = std::vector<Json>;
  using Member = std::pair<std::string, Json>;
  using Object = std::vector<Member>;

  Json() = default;  // null
  Json(std::nullptr_t) {}
  Json(bool value) : value_(value) {}
  template <std::unsigned_integral Count>
  requires(!std::same_as<Count, bool>) Json(Count value) : value_(std::uint64_t{value}) {}
  template <std::signed_integral Whole>
  Json(Whole value) : value_(std::int64_t{value}) {}
  Json(double value) : value_(value) {}
  Json(std::string value) : value_(std::move(value)) {}
  Json(const char* value) : value_(std::string(value)) {}
  Json(Array value) : value_(std::move(value)) {}
  Json(Object value) : value_(std::move(value)) {}

  /// The value as one of the types above, or null when it is of another.
  template <class Value>
  const Value* As() const {
    return std::get_if<Value>(&value_);
  }
  bool IsNull() const { return std::holds_alternative<std::monostate>(value_); }
  /// A whole number that is not negative.
  std::optional<std::uint64_t> AsCount() const;

  /// The member of an object, the last one of that name; null without one.
  const Json* Find(std::string_view key) const;
  /// Adds a member; null becomes an object.
  void Add(std::string_view key, Json value);
  /// Adds an item; null becomes an array.
  void Add(Json value);

  /// Calls `visitor` with the value, a std::monostate for null.
  template <class Visitor>
  void Visit(Visitor& visitor) const {
    std::visit(visitor, value_);
  }

  /// The text, with lines indented by two blanks a level. What is not UTF-8 in it is
  /// shown as U+FFFD.
  std::string Written() const;

 private:
  std::variant<std::monostate, bool, std::uint64_t, std::int64_t, double, std::string, Array,
               Object>
      value_;
};

/// Where a text is no JSON: the byte, from 0, or none where it is the whole that is wrong.
struct JsonFault {
  std::optional<std::size_t> byte;
};

/// Reads a JSON text of valid UTF-8. Arrays and objects may stand in one another
/// up to a depth of 500.
std::variant<Json, JsonFault> ParseJson(std::string_view utf8);

}  // namespace tovalin
