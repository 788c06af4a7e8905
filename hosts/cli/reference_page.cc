#include "hosts/cli/description_text.h"
#include "hosts/cli/signature.h"
#include "tovalin/factory.h"

// docs/reference.md, class by class.

namespace tovalin::tool {
namespace {

constexpr std::string_view kIntroduction =
    R"(# Referencia

Todas las clases de la biblioteca con sus miembros, eventos y enumeraciones. La página se genera con
`tovalin describe --markdown`; no se edita a mano.

Las firmas están en la notación de los lenguajes de automatización: `ByRef` es un argumento por
referencia, `Optional` uno que se puede omitir, con su valor por omisión si lo tiene. Los nombres de
miembros, y los de tablas y claves, no distinguen mayúsculas.

Además de los errores que se dicen en cada miembro, una llamada por nombre provoca 438 si el miembro
no existe, 449 si falta un argumento, 450 si sobra, 13 si uno no se convierte al tipo de su parámetro,
6 si no cabe en él, 424 si no es un objeto donde debe serlo, 7 si se acaba la memoria y 28 si se acaba
la pila. Los errores propios tienen el número -2147221504.
)";

std::string Escaped(TextView text) {
  std::string escaped;
  for (const char c : ToUtf8(text)) {
    if (std::string_view("\\`*_<|[").find(c) != std::string_view::npos) escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

std::string Sentence(TextView text) { return Escaped(text) + (text.ends_with(u'.') ? "" : "."); }

std::string Code(TextView name) { return '`' + ToUtf8(name) + '`'; }

// What an anchor of the page is called after a heading.
std::string LinkTo(TextView heading) {
  return '[' + Code(heading) + "](#" + ToUtf8(ToLower(heading)) + ')';
}

void AppendCode(std::string& page, const std::string& signature) {
  page.append("```vb\n").append(signature).append("\n```\n\n");
}

void AppendParameters(std::string& page, std::span<const ParameterInfo> parameters) {
  for (const ParameterInfo& parameter : parameters) {
    page.append("- ").append(Code(parameter.name));
    if (parameter.passing == Passing::Out) page.append(" (salida)");
    if (parameter.passing == Passing::InOut) page.append(" (entrada y salida)");
    page.append(": ").append(Sentence(parameter.doc));
    if (const EnumInfo* enumeration = parameter.type.enumeration)
      page.append(" Un valor de ").append(LinkTo(enumeration->name)).append(".");
    page.append("\n");
  }
  if (!parameters.empty()) page.append("\n");
}

void AppendErrors(std::string& page, const ShownMember& member) {
  std::string list;
  for (const MemberInfo* row : member.rows) {
    const bool writes = row->kind == MemberKind::Let || row->kind == MemberKind::Set;
    for (const ErrorInfo& error : row->errors)
      list.append("- ")
          .append(std::to_string(error.number))
          .append(writes ? ", al asignar: " : ": ")
          .append(Sentence(error.when))
          .append("\n");
  }
  if (!list.empty()) page.append("Errores:\n\n").append(list).append("\n");
}

void AppendResult(std::string& page, const MemberInfo& member) {
  const EnumInfo* enumeration = member.result.enumeration;
  if (member.result_doc.empty() && !enumeration) return;
  page.append("Resultado: ");
  if (!member.result_doc.empty()) page.append(Sentence(member.result_doc));
  if (enumeration)
    page.append(member.result_doc.empty() ? "un valor de " : " Un valor de ")
        .append(LinkTo(enumeration->name))
        .append(".");
  page.append("\n\n");
}

void AppendMember(std::string& page, const ClassInfo& info, const ShownMember& member) {
  const MemberInfo& first = member.First();
  page.append("### ").append(ToUtf8(info.name)).append(".").append(ToUtf8(first.name));
  page.append("\n\n");
  AppendCode(page, Signature(info, first));
  page.append(Sentence(Explanation(first))).append("\n\n");
  const bool has_value = first.kind == MemberKind::Let || first.kind == MemberKind::Set;
  AppendParameters(page, first.parameters.first(first.parameters.size() - (has_value ? 1 : 0)));
  AppendResult(page, first);
  AppendErrors(page, member);
}

void AppendEvents(std::string& page, const ClassInfo& info) {
  for (const EventInfo& event : info.events) {
    page.append("### ").append(ToUtf8(info.name)).append(".").append(ToUtf8(event.name));
    page.append(" (evento)\n\n");
    AppendCode(page, Signature(event));
    page.append(Sentence(Explanation(event))).append("\n\n");
    AppendParameters(page, event.parameters);
  }
}

void AppendEnumeration(std::string& page, const EnumInfo& enumeration) {
  page.append("### ").append(ToUtf8(enumeration.name)).append("\n\n");
  page.append(Sentence(enumeration.doc)).append("\n\n| nombre | valor | |\n| --- | ---: | --- |\n");
  for (const EnumValueInfo& value : enumeration.values)
    page.append("| ")
        .append(Code(value.name))
        .append(" | ")
        .append(std::to_string(value.value))
        .append(" | ")
        .append(Escaped(value.doc))
        .append(" |\n");
  page.append("\n");
}

void AppendClass(std::string& page, const ClassInfo& info) {
  page.append("## ").append(ToUtf8(info.name)).append("\n\n").append(Sentence(Explanation(info)));
  if (!info.create) page.append(" La aplicación no lo crea: lo recibe de otro objeto.");
  if (const MemberInfo* member = info.DefaultMember())
    page.append(" Su miembro por omisión es ").append(Code(member->name)).append(".");
  if (info.Enumerator()) page.append(" Se recorre con `For Each`.");
  page.append("\n\n");
  for (const ShownMember& member : ShownMembers(info)) AppendMember(page, info, member);
  AppendEvents(page, info);
}

}  // namespace

std::string ReferencePage() {
  std::string page(kIntroduction);
  page.append("\n| clase | |\n| --- | --- |\n");
  for (const ClassInfo* info : Classes())
    page.append("| ")
        .append(LinkTo(info->name))
        .append(" | ")
        .append(Escaped(info->doc))
        .append(" |\n");
  page.append("\n");
  for (const ClassInfo* info : Classes()) AppendClass(page, *info);
  page.append("## Enumeraciones\n\n");
  for (const ClassInfo* info : Classes())
    for (const EnumInfo* enumeration : info->enumerations) AppendEnumeration(page, *enumeration);
  page.pop_back();  // the line at the end
  return page;
}

}  // namespace tovalin::tool
