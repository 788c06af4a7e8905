#include "frame/text/json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tovalin {
namespace {

constexpr std::size_t kDeepest = 500;

// Builds the tree while the library reads the text.
class Builder {
 public:
  using Numbers = nlohmann::json;  // gives the types of its numbers

  explicit Builder(Json& root) : root_(root) {}

  bool null() { return Put(Json()); }
  bool boolean(bool value) { return Put(value); }
  bool number_integer(Numbers::number_integer_t value) { return Put(std::int64_t{value}); }
  bool number_unsigned(Numbers::number_unsigned_t value) { return Put(std::uint64_t{value}); }
  bool number_float(double value, const std::string&) { return Put(value); }
  bool string(std::string& value) { return Put(std::move(value)); }
  bool binary(Numbers::binary_t&) { return false; }  // JSON texts have none
  bool start_object(std::size_t) { return Open(Json(Json::Object())); }
  bool key(std::string& name) {
    keys_.back() = std::move(name);
    return true;
  }
  bool end_object() { return Close(); }
  bool start_array(std::size_t) { return Open(Json(Json::Array())); }
  bool end_array() { return Close(); }
  bool parse_error(std::size_t byte, const std::string&, const nlohmann::detail::exception&) {
    fault_.byte = byte > 0 ? byte - 1 : 0;
    return false;
  }

  const JsonFault& Fault() const { return fault_; }

 private:
  bool Open(Json value) {
    if (open_.size() == kDeepest) return false;
    open_.push_back(std::move(value));
    keys_.emplace_back();
    return true;
  }
  bool Close() {
    Json value = std::move(open_.back());
    open_.pop_back();
    keys_.pop_back();
    return Put(std::move(value));
  }
  bool Put(Json value) {
    if (open_.empty())
      root_ = std::move(value);
    else if (open_.back().As<Json::Object>())
      open_.back().Add(keys_.back(), std::move(value));
    else
      open_.back().Add(std::move(value));
    return true;
  }

  Json& root_;
  std::vector<Json> open_;         // arrays and objects that have not ended
  std::vector<std::string> keys_;  // of the next member of each
  JsonFault fault_;
};

// The library's own writer for what has no parts: it knows escapes and numbers.
template <class Value>
std::string WrittenScalar(const Value& value) {
  return nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

struct Writer {
  std::string& text;
  std::size_t level = 0;

  void Line() { text.append(1, '\n').append(2 * level, ' '); }

  void operator()(std::monostate) { text += "null"; }
  template <class Value>
  void operator()(const Value& value) {
    text += WrittenScalar(value);
  }
  void operator()(const Json::Array& items) {
    List('[', ']', items, [this](const Json& item) { item.Visit(*this); });
  }
  void operator()(const Json::Object& members) {
    List('{', '}', members, [this](const Json::Member& member) {
      text += WrittenScalar(member.first) + ": ";
      member.second.Visit(*this);
    });
  }

  template <class Items, class Write>
  void List(char open, char close, const Items& items, Write write) {
    text += open;
    ++level;
    for (const auto& item : items) {
      if (&item != &items.front()) text += ',';
      Line();
      write(item);
    }
    --level;
    if (!items.empty()) Line();
    text += close;
  }
};

}  // namespace

std::optional<std::uint64_t> Json::AsCount() const {
  if (const auto* value = As<std::uint64_t>()) return *value;
  const auto* value = As<std::int64_t>();
  return value && *value >= 0 ? std::optional(static_cast<std::uint64_t>(*value)) : std::nullopt;
}

const Json* Json::Find(std::string_view key) const {
  const Object* members = As<Object>();
  if (!members) return nullptr;
  const auto found = std::find_if(members->rbegin(), members->rend(),
                                  [key](const Member& member) { return member.first == key; });
  return found == members->rend() ? nullptr : &found->second;
}

void Json::Add(std::string_view key, Json value) {
  if (IsNull()) value_ = Object();
  std::get<Object>(value_).emplace_back(key, std::move(value));
}

void Json::Add(Json value) {
  if (IsNull()) value_ = Array();
  std::get<Array>(value_).push_back(std::move(value));
}

std::string Json::Written() const {
  std::string text;
  Writer writer{text};
  Visit(writer);
  return text;
}

std::variant<Json, JsonFault> ParseJson(std::string_view utf8) {
  Json root;
  Builder builder(root);
  if (!nlohmann::json::sax_parse(utf8.begin(), utf8.end(), &builder)) return builder.Fault();
  return root;
}

}  // namespace tovalin
