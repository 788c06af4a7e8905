#include "evaluator/vocabulary.h"

#include <cstdlib>

#include "evaluator/functions.h"
#include "evaluator/operators.h"
#include "evaluator/text_helpers.h"

namespace tovalin {
namespace {

constexpr TextView kSeparators = u"(),";

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

}  // namespace

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

Ref<Collection> MakeSpecialCharacters() { return MakeCharacterSet(evaluator::kReservedCharacters); }

}  // namespace tovalin
