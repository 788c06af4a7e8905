#include <algorithm>
#include <vector>

#include "evaluator/language.h"
#include "evaluator/operators.h"
#include "frame/object/error_translation.h"
#include "tovalin/evaluador.h"
#include "vocabulary/help.h"

// The records of Evaluador::Vocabulario.

namespace tovalin {
namespace {

using namespace vocabulary;

struct Parameter {
  Text name;
  TextView type;
  Text meaning;
};

/// What a record says, before it is a Collection.
struct Entry {
  TextView kind;
  Text name;
  TextView group{};
  Text signature{};
  std::vector<Parameter> parameters{};
  TextView result{};
  Text text{};
  Example example{};
  Variant priority = Variant::Null();
  Variant value = Variant::Null();
};

TextView TypeName(OperandType type) {
  static constexpr TextView kNames[] = {u"cualquiera", u"numero", u"texto", u"fecha", u"logico"};
  return kNames[static_cast<std::size_t>(type)];
}

OperandType TypeOf(std::int32_t data_type) {
  switch (data_type) {
    case kLogical:
      return OperandType::Logical;
    case kInteger:
    case kWholeNumber:
    case kCurrency:
    case kDouble:
    case kFloat:
    case kNumeric:
      return OperandType::Number;
    case kTime:
    case kDate:
    case kTimeOfDay:
      return OperandType::Date;
    case kText:
    case kLongText:
      return OperandType::Text;
    default:
      return OperandType::Any;
  }
}

Ref<Collection> AsRecord(const Parameter& parameter) {
  auto record = Make<Collection>();
  record->Add(parameter.name, u"Nombre");
  record->Add(Variant(parameter.type), u"Tipo");
  record->Add(parameter.meaning, u"Texto");
  return record;
}

Ref<Collection> AsRecord(const Entry& entry) {
  auto parameters = Make<Collection>();
  for (const Parameter& parameter : entry.parameters) parameters->Add(AsRecord(parameter));
  auto record = Make<Collection>();
  record->Add(Variant(entry.kind), u"Clase");
  record->Add(entry.name, u"Nombre");
  record->Add(Variant(entry.group), u"Grupo");
  record->Add(entry.signature, u"Firma");
  record->Add(parameters, u"Parametros");
  record->Add(Variant(entry.result), u"Resultado");
  record->Add(entry.text, u"Texto");
  record->Add(Variant(entry.example.formula), u"Ejemplo");
  record->Add(Variant(entry.example.value), u"ValorEjemplo");
  record->Add(entry.priority, u"Prioridad");
  record->Add(entry.value, u"Valor");
  return record;
}

// --- Functions --------------------------------------------------------------

const BuiltinFunction* FindBuiltin(TextView word) {
  for (const BuiltinFunction* row : BuiltinFunctions())
    if (EqualFolded(row->word, word)) return row;
  return nullptr;
}

/// "NAME( A , B )".
Text Signature(const Text& word, const std::vector<Parameter>& parameters) {
  Text signature = word;
  for (const Parameter& parameter : parameters)
    signature.append(&parameter == &parameters.front() ? u" " : u" , ").append(parameter.name);
  return signature.append(u" )");
}

std::vector<Parameter> ParametersOf(const BuiltinFunction& row, const FunctionHelp* help) {
  std::vector<Parameter> parameters;
  for (const FunctionParameter& parameter : row.Parameters()) {
    const TextView meaning = help ? help->parameters[parameters.size()] : TextView();
    parameters.push_back({Text(parameter.name), TypeName(parameter.type), Text(meaning)});
  }
  return parameters;
}

/// Those that a host wrote into the syntax of its function.
std::vector<Parameter> ParametersOf(TextView syntax) {
  std::vector<Parameter> parameters;
  const std::size_t open = syntax.find(u'(');
  const std::size_t close = syntax.rfind(u')');
  if (open == TextView::npos || close == TextView::npos || close < open) return parameters;
  TextView list = Trim(syntax.substr(open + 1, close - open - 1));
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(u','), list.size());
    parameters.push_back({Text(Trim(list.substr(0, comma))), TypeName(OperandType::Any), {}});
    list.remove_prefix(std::min(comma + 1, list.size()));
  }
  return parameters;
}

// What a host registered under its own words is told in them; the texts of the function
// table are shown only there, since formula editors of hosts know their spelling.
Entry FunctionEntry(const Campo& record) {
  const BuiltinFunction* const row = FindBuiltin(record.Name());
  const FunctionHelp* const help = row ? FindFunctionHelp(row->word) : nullptr;
  const bool own_syntax =
      !Trim(record.Sintax()).empty() && (!row || TextView(record.Sintax()) != row->syntax);
  const bool own_text = !help || (!Trim(record.Description()).empty() &&
                                  TextView(record.Description()) != row->description);
  Entry entry{.kind = u"funcion", .name = record.Name()};
  if (entry.name.ends_with(u'(')) entry.name.pop_back();
  entry.parameters = row ? ParametersOf(*row, help) : ParametersOf(record.Sintax());
  entry.signature =
      own_syntax ? Text(Trim(record.Sintax())) : Signature(record.Name(), entry.parameters);
  entry.result = TypeName(row ? row->result : OperandType::Any);
  entry.text = own_text ? Text(Trim(record.Description())) : Text(help->text);
  if (help) {
    entry.group = NameOf(help->group);
    entry.example = help->example;
  }
  return entry;
}

// --- Operators, constants, variables ----------------------------------------

Entry OperatorEntry(const Campo& record) {
  const Operator* const row = FindOperator(CodeOf(record.Name()));
  const OperatorHelp* const help = row ? FindOperatorHelp(row->literal) : nullptr;
  Entry entry{.kind = u"operador", .name = record.Name(), .priority = record.Value()};
  if (!help) {
    entry.signature = u"A " + record.Name() + u" B";
    entry.result = TypeName(OperandType::Any);
    entry.text = record.Description();
    return entry;
  }
  entry.group = NameOf(help->group);
  entry.signature = help->signature;
  for (std::size_t i = 0; i < row->operands; ++i)
    entry.parameters.push_back({Text(help->parameters[i]), TypeName(row->takes), {}});
  entry.result = TypeName(row->gives);
  entry.text = help->text;
  entry.example = help->example;
  return entry;
}

Entry SymbolEntry(TextView kind, const Campo& record) {
  return {.kind = kind,
          .name = record.Name(),
          .signature = record.Name(),
          .result = TypeName(TypeOf(record.DataType())),
          .text = record.Description(),
          .value = record.Value()};
}

Entry ConstantEntry(const Campos& constants, const Campo& record) {
  Entry entry = SymbolEntry(u"constante", record);
  const ConstantHelp* const help = FindConstantHelp(record.Name());
  if (!help) return entry;
  entry.example = help->example;
  if (constants.IsSystem(record.Name())) entry.text = help->text;
  return entry;
}

}  // namespace

Ref<Collection> Evaluador::Vocabulario() const {
  return RaisingErrors([&] {
    const Ref<Campos> operators = Operadores();
    const Ref<Campos> functions = Functions();
    const Ref<Campos> constants = Constantes();
    const Ref<Campos> variables = Variables();
    auto records = Make<Collection>();
    for (const Ref<Campo>& record : *operators) records->Add(AsRecord(OperatorEntry(*record)));
    for (const Ref<Campo>& record : *functions) records->Add(AsRecord(FunctionEntry(*record)));
    for (const Ref<Campo>& record : *constants)
      records->Add(AsRecord(ConstantEntry(*constants, *record)));
    for (const Ref<Campo>& record : *variables)
      records->Add(AsRecord(SymbolEntry(u"variable", *record)));
    return records;
  });
}

}  // namespace tovalin
