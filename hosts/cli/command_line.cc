#include "hosts/cli/command_line.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "hosts/cli/encoding.h"
#include "tovalin/convert.h"
#include "tovalin/dispatch.h"

namespace tovalin::tool {
namespace {

struct Prefix {
  std::string_view text;
  Subtype subtype;
};

constexpr Prefix kPrefixes[] = {
    {"i:", Subtype::Integer}, {"l:", Subtype::Long},     {"f:", Subtype::Single},
    {"d:", Subtype::Double},  {"c:", Subtype::Currency}, {"t:", Subtype::Date},
    {"b:", Subtype::Boolean}, {"y:", Subtype::Byte},     {"s:", Subtype::String},
};

struct BooleanWord {
  TextView word;
  bool value;
};

constexpr BooleanWord kBooleanWords[] = {
    {u"verdadero", true}, {u"true", true},   {u"sí", true},  {u"si", true},
    {u"falso", false},    {u"false", false}, {u"no", false},
};

bool ReadBoolean(const Text& text) {
  for (const BooleanWord& row : kBooleanWords)
    if (EqualFolded(row.word, text)) return row.value;
  return ToBoolean(Variant(text));
}

std::optional<Variant> ReadPrefixed(std::string_view argument) {
  if (argument == "null:") return Variant::Null();
  if (argument == "empty:") return Variant();
  if (argument == "missing:") return Variant::Missing();
  for (const Prefix& prefix : kPrefixes) {
    if (!argument.starts_with(prefix.text)) continue;
    const Text text = TextOfArgument(argument.substr(prefix.text.size()));
    if (prefix.subtype == Subtype::Boolean) return Variant(ReadBoolean(text));
    return Convert(Variant(text), prefix.subtype);
  }
  return std::nullopt;
}

struct Escape {
  char character;
  std::string_view text;
};

constexpr Escape kEscapes[] = {{'\n', "\\n"}, {'\r', "\\r"}, {'\\', "\\\\"}};

struct TypeCode {
  Subtype subtype;
  std::int32_t code;
};

constexpr TypeCode kTypeCodes[] = {
    {Subtype::Boolean, kLogical},   {Subtype::Integer, kInteger}, {Subtype::Long, kWholeNumber},
    {Subtype::Byte, kInteger},      {Subtype::Single, kFloat},    {Subtype::Double, kDouble},
    {Subtype::Currency, kCurrency}, {Subtype::Date, kDate},       {Subtype::String, kLongText},
};

std::string ShowItems(const Collection& items) {
  std::string shown;
  for (const Variant& item : items.List().Items()) {
    if (!shown.empty()) shown.push_back('\n');
    shown.append(ShowValue(item));
  }
  return shown;
}

// The tool is a host like any other: this is its handler for functions that the
// evaluator does not implement.
void Answer(Evaluador& evaluator, const Text& macro, Variant& result, Ref<Collection>& pila) {
  if (!EqualFolded(macro, u"ISNULL("))
    RaiseOwn(u"tovalin", Text(u"Nadie implementa la función ").append(macro));
  result = evaluator.LoadTopePila(pila).Is(Subtype::Null);
}

}  // namespace

Variant ReadValue(std::string_view argument) {
  if (auto value = ReadPrefixed(argument)) return *value;
  const Text text = TextOfArgument(argument);
  if (const auto number = ReadNumber(text)) return *number;
  return text;
}

Variant ReadValue(std::string_view argument, Subtype wanted) {
  if (wanted != Subtype::String) return ReadValue(argument);
  const auto value = ReadPrefixed(argument);
  return value ? *value : Variant(TextOfArgument(argument));
}

Assignment ReadAssignment(std::string_view argument) {
  const std::size_t equals = argument.find('=');
  if (equals == std::string_view::npos) Raise(Failure::InvalidArgument);
  return {Text(Trim(TextOfArgument(argument.substr(0, equals)))),
          std::string(argument.substr(equals + 1))};
}

std::string ShowValue(const Variant& value) {
  if (value.Is(Subtype::Null)) return {};
  if (value.IsMissing()) return {};
  if (!value.Is(Subtype::Object)) return ToUtf8(ToText(value));
  const Ref<Object>& object = value.AsObject();
  if (!object) return "Nothing";
  if (const Ref<Collection> items = object.As<Collection>()) return ShowItems(*items);
  if (const Ref<Campo> record = object.As<Campo>()) return ToUtf8(record->Name());
  return ToUtf8(object->Class().name);
}

std::string ShowError(const Error& error) {
  return "Error " + std::to_string(error.number) + " (" + ToUtf8(error.source) +
         "): " + ToUtf8(error.description);
}

std::string OneLine(std::string_view text) {
  std::string line;
  for (char c : text) {
    const auto escape = std::ranges::find(kEscapes, c, &Escape::character);
    if (escape == std::end(kEscapes))
      line.push_back(c);
    else
      line.append(escape->text);
  }
  return line;
}

std::int32_t DataTypeOf(const Variant& value) {
  for (const TypeCode& row : kTypeCodes)
    if (value.Is(row.subtype)) return row.code;
  return kNumeric;
}

std::string Padded(TextView text, std::size_t width) {
  std::string padded = ToUtf8(text);
  if (text.size() < width) padded.append(width - text.size(), ' ');
  return padded;
}

Ref<Evaluador> MakeEvaluator(const SymbolOptions& options) {
  auto evaluator = Make<Evaluador>();
  Evaluador& host = *evaluator;
  host.Evaluate.Attach([&host](const Text& macro, Variant& result, Ref<Collection>& pila) {
    Answer(host, macro, result, pila);
  });
  AddSymbols(host, options);
  return evaluator;
}

void AddSymbols(Evaluador& host, const SymbolOptions& options) {
  if (options.system_constants) host.ClearConstants();
  for (const std::string& word : options.functions) {
    const Text name = TextOfArgument(word);
    host.AddFunction(name + u"(", name, u"", name + u"( )");
  }
  for (const std::string& argument : options.variables) {
    const Assignment assignment = ReadAssignment(argument);
    const Variant value = ReadValue(assignment.value);
    host.AddVble(assignment.name, value, u"", DataTypeOf(value));
  }
  for (const std::string& argument : options.formulas) {
    const Assignment assignment = ReadAssignment(argument);
    host.AddVble(assignment.name, Variant(), u"", kNumeric, TextOfArgument(assignment.value));
  }
}

}  // namespace tovalin::tool
