#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>

#include "hosts/command_line.h"

// The command-line tool: a host of the library like any other.

namespace tovalin::tool {
namespace {

void AddSymbolOptions(CLI::App& command, SymbolOptions& options) {
  command.add_option("--var", options.variables, "A variable, NAME=VALUE")->take_all();
  command.add_option("--formula", options.formulas, "A formula variable, NAME=FORMULA")->take_all();
  command.add_option("--function", options.functions, "Registers a function by its word")
      ->take_all();
  command.add_flag("--system-constants", options.system_constants,
                   "Registers the ten constants of the system");
  for (const char* option : {"--var", "--formula", "--function"})
    command.get_option(option)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// A formula may begin with "-": a blank in front keeps it from being taken for
// an option.
std::vector<std::string> ShieldFormulas(std::vector<std::string> arguments) {
  const bool takes_formula =
      arguments.size() > 1 &&
      (arguments[0] == "eval" || arguments[0] == "check" || arguments[0] == "postfix");
  if (!takes_formula) return arguments;
  for (std::string& argument : arguments) {
    if (argument == "-" || argument == "--" || argument == "-h" || !argument.starts_with('-'))
      continue;
    const bool option = argument.size() > 2 && argument[1] == '-' &&
                        std::isalpha(static_cast<unsigned char>(argument[2]));
    if (!option) argument.insert(0, 1, ' ');
  }
  return arguments;
}

int Run(std::vector<std::string> arguments) {
  CLI::App app("Formula evaluator and business toolbox", "tovalin");
  app.require_subcommand(1);
  std::function<int()> chosen;
  const auto command = [&](const char* name, const char* help, std::function<int()> run) {
    CLI::App* sub = app.add_subcommand(name, help);
    sub->callback([&chosen, run = std::move(run)] { chosen = run; });
    return sub;
  };

  SymbolOptions symbols;
  std::string formula;
  std::string lines;
  CLI::App* eval = command("eval", "Evaluates a formula", [&] {
    return lines.empty() ? RunEval(symbols, formula) : RunEvalLines(symbols, lines);
  });
  AddSymbolOptions(*eval, symbols);
  CLI::Option* formula_option = eval->add_option("FORMULA", formula, "The formula");
  eval->add_option("--lines", lines, "A file with one formula a line, - for standard input")
      ->excludes(formula_option);
  for (CLI::App* sub : {command("check", "Prints the tokens of a formula, or its faults",
                                [&] { return RunCheck(symbols, formula); }),
                        command("postfix", "Prints the postfix text of a formula",
                                [&] { return RunPostfix(symbols, formula); })}) {
    sub->add_option("FORMULA", formula, "The formula")->required();
    AddSymbolOptions(*sub, symbols);
  }

  TableOptions table;
  CLI::App* table_command = command("table", "Evaluates named formulas for every row of a CSV file",
                                    [&] { return RunTable(table); });
  table_command->add_option("IN", table.input, "The CSV file, - for standard input")->required();
  table_command->add_option("--formulas", table.formulas, "A file of lines Name = formula")
      ->required();
  table_command->add_option("-o,--output", table.output, "The CSV file to write");

  command("functions", "Lists the functions", RunFunctions);
  command("operators", "Lists the operators", RunOperators);
  command("constants", "Lists the constants of the system", RunConstants);
  command("trace", "Shows the trace of the last evaluation", RunTrace);
  CLI::App* call = nullptr;
  call = command("call", "Calls a member: CLASS [PROPERTY=VALUE]... MEMBER [ARG]...",
                 [&] { return RunCall(call->remaining()); });
  call->prefix_command();

  arguments = ShieldFormulas(std::move(arguments));
  std::reverse(arguments.begin(), arguments.end());  // as CLI11 wants them
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return chosen();
}

}  // namespace
}  // namespace tovalin::tool

int main(int count, char** values) {
  try {
    return tovalin::tool::Run(std::vector<std::string>(values + 1, values + count));
  } catch (const tovalin::Error& error) {
    std::cerr << tovalin::tool::ShowError(error) << '\n';
    return tovalin::tool::kFailed;
  }
}
