#include "hosts/cli/member_listing.h"

#include <algorithm>
#include <utility>

#include "tovalin/convert.h"

namespace tovalin::tool {
namespace {

using Parameters = std::span<const ParameterInfo>;

std::string TypeName(const ValueType& type) {
  return ToUtf8(type.class_name.empty() ? SubtypeName(type.subtype) : type.class_name);
}

std::string DefaultText(const ParameterInfo& parameter) {
  const auto show = [](const auto& value) -> std::string {
    using Value = std::decay_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, std::monostate>)
      return {};
    else if constexpr (std::is_same_v<Value, const char16_t*>)
      return " = \"" + ToUtf8(value) + '"';
    else
      return " = " + ToUtf8(ToText(Variant(value)));
  };
  return std::visit(show, parameter.default_value);
}

std::string Declared(const ParameterInfo& parameter) {
  return std::string(parameter.optional ? "Optional " : "") +
         (parameter.by_reference ? "ByRef " : "") + ToUtf8(parameter.name) + " As " +
         TypeName(parameter.type) + DefaultText(parameter);
}

std::string Declared(Parameters parameters) {
  std::string list;
  for (const ParameterInfo& parameter : parameters)
    list.append(list.empty() ? "" : ", ").append(Declared(parameter));
  return '(' + list + ')';
}

std::string ResultOf(const ValueType& type) {
  return type.subtype == Subtype::Empty ? "" : " As " + TypeName(type);
}

std::string MethodLine(const MemberInfo& member) {
  const char* const word = member.result.subtype == Subtype::Empty ? "Sub " : "Function ";
  return word + ToUtf8(member.name) + Declared(member.parameters) + ResultOf(member.result);
}

// A written property has its value as last parameter, a read one as result.
std::string PropertyLine(const ClassInfo& info, const MemberInfo& member) {
  constexpr std::pair<MemberKind, std::string_view> kKinds[] = {
      {MemberKind::Get, "Get"}, {MemberKind::Let, "Let"}, {MemberKind::Set, "Set"}};
  std::string kinds;
  for (const auto& [kind, name] : kKinds)
    if (info.Find(member.name, kind)) kinds.append(kinds.empty() ? "" : ", ").append(name);
  Parameters parameters = member.parameters;
  ValueType type = member.result;
  if (member.kind != MemberKind::Get) {
    type = parameters.back().type;
    parameters = parameters.first(parameters.size() - 1);
  }
  return "Property " + ToUtf8(member.name) + (parameters.empty() ? "" : Declared(parameters)) +
         ResultOf(type) + " (" + kinds + ')';
}

}  // namespace

std::string ListMembers(const ClassInfo& info) {
  std::string lines;
  for (const MemberInfo& member : info.members) {
    if (member.hidden) continue;
    const auto is_same = [&](const MemberInfo& other) {
      return EqualFolded(other.name, member.name);
    };
    if (&*std::ranges::find_if(info.members, is_same) != &member) continue;
    const bool is_method = member.kind == MemberKind::Method;
    lines.append(is_method ? MethodLine(member) : PropertyLine(info, member)).append("\n");
    if (!member.doc.empty()) lines.append("    ").append(ToUtf8(member.doc)).append("\n");
  }
  for (const EventInfo& event : info.events)
    lines.append("Event ")
        .append(ToUtf8(event.name))
        .append(Declared(event.parameters))
        .append("\n");
  return lines;
}

}  // namespace tovalin::tool
