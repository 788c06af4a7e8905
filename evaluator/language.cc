#include "evaluator/language.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace tovalin {
namespace {

char16_t UpperAscii(char16_t c) {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

std::vector<const BuiltinFunction*> AllFunctions() {
  using namespace functions;
  std::vector<const BuiltinFunction*> all;
  for (const auto family : {OfText(), OfNumbers(), OfDates(), OfLogic()})
    for (const BuiltinFunction& function : family) all.push_back(&function);
  // Those without a place come last.
  std::ranges::stable_sort(all, {}, [](const BuiltinFunction* function) {
    return static_cast<std::uint8_t>(function->place - 1);
  });
  return all;
}

// ComodinLike is deliberately no constant of the system: hosts change or remove it.
constexpr TextView kSystemConstants =
    u"VERDADERO,FALSO,CIZQUIERDA,CDERECHA,WindowsDirectory,SystemDirectory,TempDirectory,"
    u"ReportDirectory,ProgramFiles";

Text ProgramFilesDirectory() {
#if defined(_WIN32)
  if (const char* directory = std::getenv("ProgramFiles")) return FromUtf8(directory);
#endif
  return {};
}

Ref<Collection> MakeCharacterSet(TextView characters) {
  auto set = Make<Collection>();
  for (std::size_t i = 0; i < characters.size(); ++i) {
    const Variant character(characters.substr(i, 1));
    set->Add(character, character);
  }
  return set;
}

constexpr TextView kFunctionExists =
    u"Nombre de variable no valido, existe una funcion definida con dicho nombre";
constexpr TextView kConstantExists =
    u"Nombre de la constante no valido, existe un constante definida con dicho nombre";
constexpr TextView kBadCharacter = u"Nombre de variable no valido, caracter no valido";
constexpr TextView kNumericName = u"Nombre de variable no valido, valor numerico";

bool Contains(const Collection& set, TextView item) {
  return set.List().Find(item) != KeyedList<Variant>::kNotFound;
}

bool AnyCharacterIn(const Collection& set, TextView name) {
  for (std::size_t i = 0; i < name.size(); ++i)
    if (Contains(set, name.substr(i, 1))) return true;
  return false;
}

}  // namespace

bool BuiltinFunction::Matches(TextView upper_name) const {
  return std::ranges::equal(word.substr(0, word.size() - 1), upper_name, {}, UpperAscii);
}

Variant BuiltinFunction::Call(std::span<const Variant> arguments,
                              const FunctionContext& context) const {
  if (null_argument == NullArgument::First && arguments.front().Is(Subtype::Null))
    return Variant::Null();
  if (null_argument == NullArgument::Last && arguments.back().Is(Subtype::Null))
    return Variant::Null();
  return call(arguments, context);
}

std::span<const BuiltinFunction* const> BuiltinFunctions() {
  static const std::vector<const BuiltinFunction*> all = AllFunctions();
  return all;
}

std::uint8_t FunctionIndex(const BuiltinFunction& function) {
  const auto all = BuiltinFunctions();
  return static_cast<std::uint8_t>(std::ranges::find(all, &function) - all.begin());
}

const BuiltinFunction& FunctionAt(std::uint8_t index) { return *BuiltinFunctions()[index]; }

const BuiltinFunction* FindFunction(TextView upper_name) {
  for (const BuiltinFunction* function : BuiltinFunctions())
    if (function->call && function->Matches(upper_name)) return function;
  return nullptr;
}

const BuiltinFunction* FunctionOf(TextView function_name) {
  if (!function_name.empty() && function_name.back() == u'(') function_name.remove_suffix(1);
  return FindFunction(ToUpper(function_name));
}

Ref<Campo> MakeFunction(const Text& name, const Text& source_name, const Text& description,
                        const Text& syntax) {
  auto record = Make<Campo>(name);
  record->LetDescription(description);
  record->LetSourceName(source_name);
  record->LetSintax(syntax);
  return record;
}

Ref<Campo> MakeSymbol(const Text& name, const Variant& value, const Text& description,
                      std::int32_t data_type, const Text& formula) {
  auto record = Make<Campo>(name);
  record->LetValue(value);
  record->LetDescription(description);
  record->LetDataType(data_type);
  record->LetFormula(formula);
  return record;
}

Ref<Campos> MakeOperators() {
  constexpr std::int32_t kOperatorSize = 255;
  auto table = Make<Campos>();
  for (const Operator& row : Operators()) {
    Ref<Campo> record = MakeSymbol(Text(row.literal), row.priority, {}, kLongText);
    record->LetSize(kOperatorSize);
    table->Add(record);
  }
  return table;
}

Ref<Campos> MakeFunctions() {
  auto table = Make<Campos>();
  for (const BuiltinFunction* row : BuiltinFunctions())
    if (row->place > 0)
      table->Add(MakeFunction(Text(row->word), Text(row->source_name), Text(row->description),
                              Text(row->syntax)));
  return table;
}

Ref<Campos> MakeConstants() {
  struct Row {
    TextView name;
    Variant value;
    TextView description;
    std::int32_t data_type;
  };
  const Row rows[] = {
      {u"VERDADERO", true, u"Verdadero", kLogical},
      {u"FALSO", false, u"Falso", kLogical},
      {u"CIZQUIERDA", std::int32_t{0}, u"Justificar a la izquierda", kWholeNumber},
      {u"CDERECHA", std::int32_t{1}, u"Justificar a la derecha", kWholeNumber},
      {u"WindowsDirectory", u"", u"Directorio de Windows", kLongText},
      {u"SystemDirectory", u"", u"Directorio Sytem de Windows", kLongText},
      {u"TempDirectory", u"", u"Directorio temporal de Windows", kLongText},
      {u"ReportDirectory", u"", u"Directorio para reportes", kLongText},
      {u"ProgramFiles", ProgramFilesDirectory(), u"Directorio Archivos de Programa", kLongText},
      {u"ComodinLike", u"%", u"Comodin Like", kLongText},
  };
  auto table = Make<Campos>();
  for (const Row& row : rows)
    table->Add(MakeSymbol(Text(row.name), row.value, Text(row.description), row.data_type));
  table->LetSystemList(Text(kSystemConstants));
  return table;
}

Ref<Collection> MakeSeparators() { return MakeCharacterSet(kSeparators); }

Ref<Collection> MakeSpecialCharacters() { return MakeCharacterSet(kReservedCharacters); }

Symbols::Symbols()
    : functions(MakeFunctions()),
      variables(Make<Campos>()),
      constants(Make<Campos>()),
      operators(MakeOperators()),
      separators(MakeSeparators()),
      special_characters(MakeSpecialCharacters()) {}

Campo* Symbols::Find(TextView name) const {
  Campo* variable = variables->Find(name);
  return variable ? variable : constants->Find(name);
}

Text Symbols::Complaints(TextView name) const {
  Text complaints;
  const auto complain = [&](TextView message) { complaints.append(message).append(u"\r\n"); };
  if (functions->Find(name)) complain(kFunctionExists);
  if (constants->Find(name)) complain(kConstantExists);
  if (Contains(*separators, name)) complain(kBadCharacter);
  // The name "(" deliberately gets its message twice, from the check above too:
  // hosts show the lines as they come.
  if (ReadNumber(name))
    complain(kNumericName);
  else if (AnyCharacterIn(*special_characters, name))
    complain(kBadCharacter);
  return complaints;
}

void Symbols::Validate(TextView name) const {
  const Text complaints = Complaints(name);
  if (!complaints.empty()) RaiseOwn(u"Evaluador", complaints);
}

}  // namespace tovalin
