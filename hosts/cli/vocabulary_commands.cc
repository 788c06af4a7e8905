#include <algorithm>
#include <array>
#include <iostream>
#include <map>
#include <optional>

#include "hosts/cli/command_line.h"
#include "hosts/cli/json_value.h"
#include "tovalin/convert.h"
#include "vocabulary/help.h"

// tovalin functions, operators, constants.

namespace tovalin::tool {
namespace {

using Row = std::array<Text, 3>;

void PrintTable(const std::vector<Row>& rows) {
  std::array<std::size_t, 3> widths{};
  for (const Row& row : rows)
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  for (const Row& row : rows) {
    std::string line = Padded(row[0], widths[0]) + "  " + Padded(row[1], widths[1]) + "  " +
                       Padded(row[2], widths[2]);
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << line << '\n';
  }
}

/// The records of one kind.
std::vector<Ref<Collection>> RecordsOf(const Evaluador& evaluator, TextView kind) {
  std::vector<Ref<Collection>> records;
  const Ref<Collection> vocabulary = evaluator.Vocabulario();
  for (const Variant& item : vocabulary->List().Items()) {
    const Ref<Collection> record = item.AsObject().As<Collection>();
    if (record->Item(u"Clase").AsText() == kind) records.push_back(record);
  }
  return records;
}

int PrintJson(const Evaluador& evaluator, TextView kind) {
  Json json{Json::Array()};
  for (const Ref<Collection>& record : RecordsOf(evaluator, kind)) json.Add(JsonOf(record));
  std::cout << json.Written() << '\n';
  return kDone;
}

// --- The tables of docs/functions.md ----------------------------------------

std::string TextOf(const Collection& record, TextView key) {
  return ToUtf8(record.Item(Variant(key)).AsText());
}

/// A result between double quotes where one would not see it all.
std::string ShownResult(const std::string& result) {
  const bool all_seen = !result.empty() && result.front() != ' ' && result.back() != ' ';
  return all_seen ? result : '"' + result + '"';
}

void PrintRow(const Collection& record) {
  std::cout << "| `" << TextOf(record, u"Firma") << "` | " << TextOf(record, u"Texto") << " | `"
            << TextOf(record, u"Ejemplo") << "` da `"
            << ShownResult(TextOf(record, u"ValorEjemplo")) << "` |\n";
}

// A table for each group, between marks by which the page knows what is generated.
int PrintFunctionTables(Evaluador& evaluator) {
  for (const vocabulary::FunctionHelp& help : vocabulary::FunctionHelps())
    if (!evaluator.Functions()->Find(help.word))  // a host has to register it
      evaluator.AddFunction(Text(help.word), Text(help.word.substr(0, help.word.size() - 1)), u"",
                            u"");
  std::map<Text, Ref<Collection>> records;
  for (const Ref<Collection>& record : RecordsOf(evaluator, u"funcion"))
    records[record->Item(u"Nombre").AsText() + u"("] = record;
  std::optional<vocabulary::Group> group;
  for (const vocabulary::FunctionHelp& help : vocabulary::FunctionHelps()) {
    if (group != help.group) {
      if (group) std::cout << "<!-- fin -->\n";
      std::cout << "<!-- funciones: " << ToUtf8(NameOf(help.group))
                << " -->\n| Función | Qué da | Ejemplo |\n| --- | --- | --- |\n";
      group = help.group;
    }
    PrintRow(*records.at(Text(help.word)));
  }
  std::cout << "<!-- fin -->\n";
  return kDone;
}

}  // namespace

int RunFunctions(Listing listing) {
  auto evaluator = Make<Evaluador>();
  if (listing == Listing::Json) return PrintJson(*evaluator, u"funcion");
  if (listing == Listing::Markdown) return PrintFunctionTables(*evaluator);
  const Ref<Campos> functions = evaluator->Functions();
  std::vector<Row> rows{{u"Función", u"Sintaxis", u"Descripción"}};
  for (const Ref<Campo>& record : functions->List().Items())
    rows.push_back({record->Name(), record->Sintax(), record->Description()});
  PrintTable(rows);
  return kDone;
}

int RunOperators(Listing listing) {
  auto evaluator = Make<Evaluador>();
  if (listing == Listing::Json) return PrintJson(*evaluator, u"operador");
  const Ref<Campos> operators = evaluator->Operadores();
  std::vector<Row> rows{{u"Operador", u"Prioridad", u""}};
  for (const Ref<Campo>& record : operators->List().Items())
    rows.push_back({record->Name(), ToText(record->Value()), u""});
  PrintTable(rows);
  return kDone;
}

int RunConstants(Listing listing) {
  auto evaluator = Make<Evaluador>();
  evaluator->ClearConstants();
  if (listing == Listing::Json) return PrintJson(*evaluator, u"constante");
  const Ref<Campos> constants = evaluator->Constantes();
  std::vector<Row> rows{{u"Constante", u"Valor", u"Descripción"}};
  for (const Ref<Campo>& record : constants->List().Items())
    rows.push_back({record->Name(), ToText(record->Value()), record->Description()});
  PrintTable(rows);
  return kDone;
}

}  // namespace tovalin::tool
