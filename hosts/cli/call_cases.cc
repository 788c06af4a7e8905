#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "hosts/cli/case_kinds.h"
#include "hosts/cli/memory_settings.h"
#include "tovalin/cls_file_export.h"
#include "tovalin/convert.h"
#include "tovalin/evaluador.h"
#include "tovalin/factory.h"

// The cases that call members, and those of exports.

namespace tovalin::tool {
namespace {

std::function<Date()> ClockOf(const Section& section) {
  for (const TableLine* line : Directives(section, u"!clock"))
    return [now = ToDate(ReadNotation(line->At(1)))] { return now; };
  return {};
}

Ref<Object> MakeObject(const Section& section, TextView class_name) {
  const Ref<Object> object = CreateObject(class_name);
  const auto clock = ClockOf(section);
  if (const Ref<Evaluador> evaluator = object.As<Evaluador>()) {
    evaluator->UseSettings(Make<MemorySettings>());
    if (clock) evaluator->UseClock(clock);
  } else if (const Ref<clsFileExport> exporter = object.As<clsFileExport>(); exporter && clock) {
    exporter->UseClock(clock);
  }
  AssignProperties(section, *object);
  return object;
}

struct KindWord {
  TextView word;
  MemberKind kind;
};

constexpr KindWord kKindWords[] = {{u"let ", MemberKind::Let}, {u"set ", MemberKind::Set}};

Variant CallAs(Object& object, TextView name, MemberKind kind, std::span<Variant> arguments) {
  Variant result;
  if (auto error = object.Invoke(name, kind, arguments, result)) throw *error;
  return result;
}

// "let Name", "set Name", or the name of a method or of a property to be read.
Variant CallMember(Object& object, TextView member, std::span<Variant> arguments) {
  for (const KindWord& row : kKindWords)
    if (member.starts_with(row.word))
      return CallAs(object, member.substr(row.word.size()), row.kind, arguments);
  const bool property = object.Class().Find(member, MemberKind::Get) != nullptr;
  return CallAs(object, member, property ? MemberKind::Get : MemberKind::Method, arguments);
}

Ref<Object> ObjectIn(const Variant& value) {
  if (!value.Is(Subtype::Object) || !value.AsObject()) throw TableFault{"the path meets no object"};
  return value.AsObject();
}

bool TakesArguments(const Object& object, TextView member) {
  for (MemberKind kind : {MemberKind::Get, MemberKind::Method})
    if (const MemberInfo* info = object.Class().Find(member, kind))
      return !info->parameters.empty();
  return false;
}

// Follows a path such as "Functions(5).SourceName" or "Preparar("A + 1").Posfijo" up
// to its last member.
TextView LastOfPath(TextView path, Ref<Object>& object) {
  while (true) {
    const std::size_t end = path.find_first_of(u".(");
    if (end == TextView::npos) return path;
    const TextView member = path.substr(0, end);
    if (path[end] == u'.') {
      object = ObjectIn(CallMember(*object, member, {}));
      path.remove_prefix(end + 1);
      continue;
    }
    const std::size_t closing = path.find(u").", end);
    if (closing == TextView::npos) throw TableFault{"a path ends with a member"};
    Variant index[] = {ReadNotation(path.substr(end + 1, closing - end - 1))};
    if (TakesArguments(*object, member)) {
      object = ObjectIn(CallMember(*object, member, index));
    } else {
      object = ObjectIn(CallMember(*object, member, {}));
      object = ObjectIn(CallMember(*object, u"Item", index));
    }
    path.remove_prefix(closing + 2);
  }
}

std::vector<Variant> ArgumentsOf(const Case& running) {
  std::vector<Variant> arguments;
  for (char16_t digit = u'1'; digit <= u'8'; ++digit) {
    const TextView cell = running.Cell(TextView(&digit, 1));
    if (cell.empty()) continue;
    arguments.resize(static_cast<std::size_t>(digit - u'1'), Variant::Missing());
    arguments.push_back(ReadNotation(cell));
  }
  return arguments;
}

// A directory that goes with its owner.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    const auto parent = std::filesystem::temp_directory_path();
    for (int number = 0;; ++number) {
      path_ = parent / ("tovalin-selftest-" + std::to_string(number));
      if (std::filesystem::create_directory(path_)) return;
    }
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string File(const char* name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

Ref<Campos> FieldsOf(const Section& section) {
  auto fields = Make<Campos>();
  for (const TableLine* line : Directives(section, u"!field")) {
    auto field = Make<Campo>(line->At(1));
    field->LetDataType(ToLong(ReadNotation(line->At(2))));
    field->LetSize(ToLong(ReadNotation(line->At(3))));
    field->LetPosition(ToInteger(ReadNotation(line->At(4))));
    fields->Add(field);
  }
  return fields;
}

Variant RowsOf(const Section& section) {
  const std::vector<const TableLine*> rows = Directives(section, u"!row");
  std::size_t columns = 0;
  for (const TableLine* row : rows) columns = std::max(columns, row->cells.size() - 1);
  auto array = Make<VariantArray>(columns, rows.size());
  for (std::size_t row = 0; row < rows.size(); ++row)
    for (std::size_t column = 0; column + 1 < rows[row]->cells.size(); ++column)
      array->At(column, row) = ReadNotation(rows[row]->cells[column + 1]);
  return array;
}

// The bytes of a file, a character for each. A file that is not there is "none".
Text BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return u"none";
  std::ostringstream bytes;
  bytes << file.rdbuf();
  Text text;
  for (char byte : bytes.str()) text.push_back(static_cast<unsigned char>(byte));
  return text;
}

// The layout file tells the path that it was given: "{path}" in a table.
Text WithoutPath(Text text, const Text& path) {
  if (const std::size_t found = text.find(path); found != Text::npos)
    text.replace(found, path.size(), u"{path}");
  return text;
}

}  // namespace

void RunCallCase(Case& running) {
  const bool keep = !Directives(running.section, u"!keep").empty();
  if (!keep || !running.kept) running.kept = MakeObject(running.section, running.Cell(u"class"));
  std::vector<Variant> arguments = ArgumentsOf(running);
  running.Expect(u"result", OutcomeOf([&] {
                   Ref<Object> object = running.kept;
                   const TextView member = LastOfPath(running.Cell(u"member"), object);
                   return CallMember(*object, member, arguments);
                 }));
  for (std::size_t i = 0; i < arguments.size(); ++i)
    running.Expect(u"after " + ToText(Variant(static_cast<std::int32_t>(i + 1))), arguments[i]);
}

void RunExportCase(Case& running) {
  const Section& section = running.section;
  const TemporaryDirectory directory;
  const Text path = FromUtf8(directory.File("salida"));
  const Ref<clsFileExport> exporter = MakeObject(section, u"clsFileExport").As<clsFileExport>();
  Variant rows = RowsOf(section);
  const TextView count = running.Cell(u"rows");
  const std::int32_t last = count.empty() ? static_cast<std::int32_t>(rows.AsArray().Rows()) - 1
                                          : ToLong(ReadNotation(count));
  running.Expect(u"result", Variant(exporter->GenerarArchivoPlanoDesdeBD(rows, FieldsOf(section),
                                                                         last, path)));
  if (!running.Cell(u"txt").empty())
    running.ExpectText(u"txt", BytesOf(directory.File("salida.txt")));
  if (!running.Cell(u"ref").empty())
    running.ExpectText(u"ref", WithoutPath(BytesOf(directory.File("salida.ref")), path));
}

}  // namespace tovalin::tool
