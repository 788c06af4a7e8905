#include "hosts/cli/formula_file.h"

#include "hosts/cli/encoding.h"
#include "hosts/cli/input.h"

namespace tovalin::tool {
namespace {

NamedFormula ReadFormula(TextView line) {
  const std::size_t equals = line.find(u'=');
  if (equals == TextView::npos)
    RaiseOwn(u"tovalin", Text(u"Línea sin \"=\" en las fórmulas: ").append(line));
  return {Text(Trim(line.substr(0, equals))), Text(Trim(line.substr(equals + 1)))};
}

}  // namespace

std::vector<NamedFormula> ReadFormulas(const std::string& path) {
  std::vector<NamedFormula> formulas;
  std::size_t number = 0;
  ReadLines(path, [&](std::string_view line) {
    const Text text = TextOfLine(line, path, ++number);
    const TextView trimmed = Trim(text);
    if (!trimmed.empty() && trimmed.front() != u'#') formulas.push_back(ReadFormula(trimmed));
  });
  return formulas;
}

}  // namespace tovalin::tool
