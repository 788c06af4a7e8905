#include <charconv>

#include "frame/object/error_translation.h"
#include "tovalin/convert.h"
#include "tovalin/describe.h"
#include "tovalin/version.h"

namespace tovalin {
namespace {

/// Writes JSON, a line for each name of an object and each item of an array.
class JsonWriter {
 public:
  void Name(std::string_view name) {
    Separate();
    AppendQuoted(name);
    json_.append(": ");
    named_ = true;
  }
  void Open(char bracket) {
    Separate();
    json_.push_back(bracket);
    ++depth_;
    empty_ = true;
  }
  void Close(char bracket) {
    --depth_;
    if (!empty_) NewLine();
    json_.push_back(bracket);
    empty_ = false;
  }
  void Value(TextView text) {
    Separate();
    AppendQuoted(ToUtf8(text));
  }
  void Value(const char16_t* text) { Value(TextView(text)); }
  void Value(std::string_view text) {
    Separate();
    AppendQuoted(text);
  }
  void Value(bool value) {
    Separate();
    json_.append(value ? "true" : "false");
  }
  void Value(std::int32_t number) {
    Separate();
    char digits[16];
    json_.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
  }
  std::string Take() { return std::move(json_); }

 private:
  // What stands in front of a name, an item, or the value of a name (nothing).
  void Separate() {
    if (std::exchange(named_, false) || depth_ == 0) return;
    if (!std::exchange(empty_, false)) json_.push_back(',');
    NewLine();
  }
  void NewLine() { json_.append(1, '\n').append(2 * depth_, ' '); }

  void AppendQuoted(std::string_view utf8) {
    constexpr std::string_view kHex = "0123456789abcdef";
    json_.push_back('"');
    for (const char c : utf8) {
      const auto code = static_cast<unsigned char>(c);
      if (c == '"' || c == '\\')
        json_.append(1, '\\').append(1, c);
      else if (code < 0x20)
        json_.append("\\u00").append(1, kHex[code >> 4]).append(1, kHex[code & 15]);
      else
        json_.push_back(c);
    }
    json_.push_back('"');
  }

  std::string json_;
  std::size_t depth_ = 0;
  bool empty_ = true;   // of the object or array that is open
  bool named_ = false;  // a name waits for its value
};

template <class T>
void Put(JsonWriter& json, std::string_view name, const T& value) {
  json.Name(name);
  json.Value(value);
}
void PutIfAny(JsonWriter& json, std::string_view name, TextView text) {
  if (!text.empty()) Put(json, name, text);
}
void PutIfTrue(JsonWriter& json, std::string_view name, bool value) {
  if (value) Put(json, name, true);
}

template <class Items, class Write>
void PutList(JsonWriter& json, std::string_view name, const Items& items, Write write) {
  if (items.empty()) return;
  json.Name(name);
  json.Open('[');
  for (const auto& item : items) {
    json.Open('{');
    write(json, item);
    json.Close('}');
  }
  json.Close(']');
}

void PutType(JsonWriter& json, const ValueType& type) {
  Put(json, "type", TextView(SubtypeName(type.subtype)));
  Put(json, "code", static_cast<std::int32_t>(type.subtype));
  PutIfAny(json, "class", type.class_name);
  if (type.enumeration) Put(json, "enumeration", type.enumeration->name);
}

void PutDefault(JsonWriter& json, const DefaultValue& value) {
  std::visit(
      [&](const auto& held) {
        if constexpr (!std::is_same_v<std::decay_t<decltype(held)>, std::monostate>)
          Put(json, "default", held);
      },
      value);
}

std::string_view WordOf(Passing passing) {
  return passing == Passing::In ? "in" : passing == Passing::Out ? "out" : "inout";
}

std::string_view WordOf(MemberKind kind) {
  switch (kind) {
    case MemberKind::Get:
      return "get";
    case MemberKind::Let:
      return "let";
    case MemberKind::Set:
      return "set";
    default:
      return "method";
  }
}

void WriteParameter(JsonWriter& json, const ParameterInfo& parameter) {
  Put(json, "name", parameter.name);
  PutType(json, parameter.type);
  PutIfTrue(json, "byReference", parameter.by_reference);
  Put(json, "passing", WordOf(parameter.passing));
  PutIfTrue(json, "optional", parameter.optional);
  PutDefault(json, parameter.default_value);
  PutIfAny(json, "doc", parameter.doc);
}

void WriteError(JsonWriter& json, const ErrorInfo& error) {
  Put(json, "number", error.number);
  Put(json, "when", error.when);
}

void WriteMember(JsonWriter& json, const MemberInfo& member) {
  Put(json, "id", member.id);
  Put(json, "name", member.name);
  Put(json, "kind", WordOf(member.kind));
  PutIfTrue(json, "hidden", member.hidden);
  PutIfTrue(json, "restricted", member.restricted);
  PutIfAny(json, "doc", member.doc);
  PutIfAny(json, "reference", member.reference);
  PutList(json, "parameters", member.parameters, WriteParameter);
  if (member.result.subtype != Subtype::Empty) {
    json.Name("result");
    json.Open('{');
    PutType(json, member.result);
    PutIfAny(json, "doc", member.result_doc);
    json.Close('}');
  }
  PutList(json, "errors", member.errors, WriteError);
}

void WriteEvent(JsonWriter& json, const EventInfo& event) {
  Put(json, "id", event.id);
  Put(json, "name", event.name);
  PutIfAny(json, "doc", event.doc);
  PutIfAny(json, "reference", event.reference);
  PutList(json, "parameters", event.parameters, WriteParameter);
}

void WriteEnumeration(JsonWriter& json, const EnumInfo* enumeration) {
  Put(json, "name", enumeration->name);
  Put(json, "doc", enumeration->doc);
  PutList(json, "values", enumeration->values, [](JsonWriter& writer, const EnumValueInfo& value) {
    Put(writer, "name", value.name);
    Put(writer, "value", value.value);
    Put(writer, "doc", value.doc);
  });
}

void WriteClass(JsonWriter& json, const ClassInfo* info) {
  Put(json, "name", info->name);
  Put(json, "creatable", info->create != nullptr);
  PutIfAny(json, "doc", info->doc);
  PutIfAny(json, "reference", info->reference);
  if (const MemberInfo* member = info->DefaultMember()) Put(json, "default", member->name);
  if (const MemberInfo* member = info->Enumerator()) Put(json, "enumerator", member->name);
  PutList(json, "members", info->members, WriteMember);
  PutList(json, "events", info->events, WriteEvent);
  PutList(json, "enumerations", info->enumerations, WriteEnumeration);
}

}  // namespace

std::string DescribeJson(const ClassInfo& info) {
  return RaisingErrors([&] {
    JsonWriter json;
    json.Open('{');
    WriteClass(json, &info);
    json.Close('}');
    return json.Take();
  });
}

std::string DescribeJson(std::span<const ClassInfo* const> classes) {
  return RaisingErrors([&] {
    JsonWriter json;
    json.Open('{');
    Put(json, "version", std::string_view(kVersion));
    PutList(json, "classes", classes, WriteClass);
    json.Close('}');
    return json.Take();
  });
}

}  // namespace tovalin
