#include <algorithm>
#include <array>
#include <iostream>

#include "hosts/cli/command_line.h"
#include "tovalin/convert.h"

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

}  // namespace

int RunFunctions() {
  const Ref<Campos> functions = Make<Evaluador>()->Functions();
  std::vector<Row> rows{{u"Función", u"Sintaxis", u"Descripción"}};
  for (const Ref<Campo>& record : functions->List().Items())
    rows.push_back({record->Name(), record->Sintax(), record->Description()});
  PrintTable(rows);
  return kDone;
}

int RunOperators() {
  const Ref<Campos> operators = Make<Evaluador>()->Operadores();
  std::vector<Row> rows{{u"Operador", u"Prioridad", u""}};
  for (const Ref<Campo>& record : operators->List().Items())
    rows.push_back({record->Name(), ToText(record->Value()), u""});
  PrintTable(rows);
  return kDone;
}

int RunConstants() {
  auto evaluator = Make<Evaluador>();
  evaluator->ClearConstants();
  const Ref<Campos> constants = evaluator->Constantes();
  std::vector<Row> rows{{u"Constante", u"Valor", u"Descripción"}};
  for (const Ref<Campo>& record : constants->List().Items())
    rows.push_back({record->Name(), ToText(record->Value()), record->Description()});
  PrintTable(rows);
  return kDone;
}

}  // namespace tovalin::tool
