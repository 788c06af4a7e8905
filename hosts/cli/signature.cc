#include "hosts/cli/signature.h"

#include <algorithm>
#include <utility>

#include "tovalin/convert.h"

namespace tovalin::tool {
namespace {

using Parameters = std::span<const ParameterInfo>;

std::string TypeName(const ValueType& type) {
  if (type.enumeration) return ToUtf8(type.enumeration->name);
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

constexpr std::pair<MemberKind, std::string_view> kKinds[] = {
    {MemberKind::Method, "Method"},
    {MemberKind::Get, "Get"},
    {MemberKind::Let, "Let"},
    {MemberKind::Set, "Set"},
};

// A written property has its value as last parameter, a read one as result.
std::string PropertyLine(const ClassInfo& info, const MemberInfo& member) {
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

std::string_view KindName(MemberKind kind) {
  return std::ranges::find(kKinds, kind, &std::pair<MemberKind, std::string_view>::first)->second;
}

std::string Signature(const ClassInfo& info, const MemberInfo& member) {
  return member.kind == MemberKind::Method ? MethodLine(member) : PropertyLine(info, member);
}

std::string Signature(const EventInfo& event) {
  return "Event " + ToUtf8(event.name) + Declared(event.parameters);
}

std::vector<ShownMember> ShownMembers(const ClassInfo& info) {
  std::vector<ShownMember> members;
  for (const MemberInfo& row : info.members) {
    if (row.hidden) continue;
    const auto same = std::ranges::find_if(members, [&](const ShownMember& other) {
      return EqualFolded(other.First().name, row.name);
    });
    if (same == members.end())
      members.push_back({{&row}});
    else
      same->rows.push_back(&row);
  }
  return members;
}

std::string ListMembers(const ClassInfo& info) {
  std::string lines;
  for (const ShownMember& member : ShownMembers(info)) {
    lines.append(Signature(info, member.First())).append("\n");
    const TextView doc = member.First().doc;
    if (!doc.empty()) lines.append("    ").append(ToUtf8(doc)).append("\n");
  }
  for (const EventInfo& event : info.events) lines.append(Signature(event)).append("\n");
  return lines;
}

}  // namespace tovalin::tool
