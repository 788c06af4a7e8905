#include "hosts/cli/description_text.h"

#include "hosts/cli/signature.h"
#include "tovalin/factory.h"

namespace tovalin::tool {
namespace {

constexpr std::string_view kIndent = "    ";

// How an argument by reference goes: nothing of one that is only read.
std::string_view PassingWord(const ParameterInfo& parameter) {
  if (parameter.passing == Passing::Out) return " (salida)";
  return parameter.passing == Passing::InOut ? " (entrada y salida)" : "";
}

void AppendLine(std::string& text, std::string_view label, TextView line) {
  text.append(kIndent).append(label).append(ToUtf8(line)).append("\n");
}

void AppendParameters(std::string& text, std::span<const ParameterInfo> parameters) {
  for (const ParameterInfo& parameter : parameters)
    AppendLine(text, ToUtf8(parameter.name) + std::string(PassingWord(parameter)) + ": ",
               parameter.doc);
}

void AppendErrors(std::string& text, const ShownMember& member) {
  for (const MemberInfo* row : member.rows) {
    const bool writes = row->kind == MemberKind::Let || row->kind == MemberKind::Set;
    for (const ErrorInfo& error : row->errors)
      AppendLine(text,
                 (writes ? "Error al asignar " : "Error ") + std::to_string(error.number) + ": ",
                 error.when);
  }
}

void AppendMember(std::string& text, const ClassInfo& info, const ShownMember& member) {
  const MemberInfo& first = member.First();
  text.append(Signature(info, first)).append("\n");
  AppendLine(text, "", Explanation(first));
  const bool has_value = first.kind == MemberKind::Let || first.kind == MemberKind::Set;
  AppendParameters(text, first.parameters.first(first.parameters.size() - (has_value ? 1 : 0)));
  if (!first.result_doc.empty()) AppendLine(text, "Resultado: ", first.result_doc);
  AppendErrors(text, member);
}

}  // namespace

std::string EnumerationText(const EnumInfo& enumeration) {
  std::string text = "Enum " + ToUtf8(enumeration.name) + "\n";
  AppendLine(text, "", enumeration.doc);
  for (const EnumValueInfo& value : enumeration.values)
    AppendLine(text, ToUtf8(value.name) + " = " + std::to_string(value.value) + ": ", value.doc);
  return text;
}

std::string ClassText(const ClassInfo& info) {
  std::string text = "Class " + ToUtf8(info.name) + "\n";
  AppendLine(text, "", Explanation(info));
  for (const ShownMember& member : ShownMembers(info)) AppendMember(text, info, member);
  for (const EventInfo& event : info.events) {
    text.append(Signature(event)).append("\n");
    AppendLine(text, "", Explanation(event));
    AppendParameters(text, event.parameters);
  }
  for (const EnumInfo* enumeration : info.enumerations) text += EnumerationText(*enumeration);
  return text;
}

std::string ClassesText() {
  std::string text;
  for (const ClassInfo* info : Classes()) {
    text.append("Class ").append(ToUtf8(info->name)).append("\n");
    AppendLine(text, "", info->doc);
  }
  for (const ClassInfo* info : Classes())
    for (const EnumInfo* enumeration : info->enumerations) {
      text.append("Enum ").append(ToUtf8(enumeration->name)).append("\n");
      AppendLine(text, "", enumeration->doc);
    }
  return text;
}

std::string ListIds() {
  std::string lines;
  const auto add = [&](TextView owner, std::string_view kind, TextView name, std::int32_t id) {
    lines.append(ToUtf8(owner)).append(1, ' ').append(kind).append(1, ' ');
    lines.append(ToUtf8(name)).append(1, ' ').append(std::to_string(id)).append("\n");
  };
  for (const ClassInfo* info : Classes()) {
    for (const MemberInfo& member : info->members)
      add(info->name, KindName(member.kind), member.name, member.id);
    for (const EventInfo& event : info->events) add(info->name, "Event", event.name, event.id);
    for (const EnumInfo* enumeration : info->enumerations)
      for (const EnumValueInfo& value : enumeration->values)
        add(enumeration->name, "Value", value.name, value.value);
  }
  return lines;
}

}  // namespace tovalin::tool
