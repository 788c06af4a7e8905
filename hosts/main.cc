#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iostream>
#include <new>

#include "hosts/command_line.h"

// The command-line tool: a host of the library like any other.

namespace tovalin::tool {
namespace {

void AddSymbolOptions(CLI::App& command, SymbolOptions& options) {
  // One value after each option, as often as it is given: the formula may follow.
  const auto repeated = [&](const char* name, std::vector<std::string>& values, const char* help) {
    command.add_option(name, values, help)->take_all()->allow_extra_args(false);
  };
  repeated("--var", options.variables, "A variable, NAME=VALUE");
  repeated("--formula", options.formulas, "A formula variable, NAME=FORMULA");
  repeated("--function", options.functions, "Registers a function by its word");
  command.add_flag("--system-constants", options.system_constants,
                   "Registers the ten constants of the system");
}

void AddExportOptions(CLI::App& command, ExportOptions& options) {
  command.add_option("IN", options.input, "The CSV file, - for standard input")->required();
  command
      .add_option("--fields", options.fields,
                  "A CSV file with the columns name, type (code), size and column (of IN, from 0)")
      ->required();
  command.add_option("--rows", options.rows, "How many rows, or all");
  command.add_flag("--fixed", options.fixed, "Fixed width, in place of delimited");
  command.add_option("--date-order", options.date_order, "DMY, DYM, MDY, MYD, YDM or YMD");
  command.add_flag("--year4", options.year4, "Years of four digits");
  command.add_option("--date-separator", options.date_separator, "Between the parts of a date");
  command.add_option("--text-separator", options.text_separator, "Around texts");
  command.add_option("OUT", options.output, "The path of the two files, without .txt and .ref")
      ->required();
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
  CLI::Option* lines_option = nullptr;
  CLI::App* eval = command("eval", "Evaluates a formula", [&] {
    return *lines_option ? RunEvalLines(symbols, lines) : RunEval(symbols, formula);
  });
  AddSymbolOptions(*eval, symbols);
  CLI::Option_group* source = eval->add_option_group("What to evaluate")->require_option(1);
  source->add_option("FORMULA", formula, "The formula");
  lines_option =
      source->add_option("--lines", lines, "A file with one formula a line, - for standard input");
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

  ExportOptions exported;
  AddExportOptions(*command("export", "Exports the rows of a CSV file with clsFileExport",
                            [&] { return RunExport(exported); }),
                   exported);

  command("functions", "Lists the functions", RunFunctions);
  command("operators", "Lists the operators", RunOperators);
  command("constants", "Lists the constants of the system", RunConstants);
  bool follow = false;
  command("trace", "Shows the trace of the last evaluation", [&] {
    return RunTrace(follow);
  })->add_flag("--follow", follow, "Shows it again at every change, until interrupted");
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
  using namespace tovalin;
  try {
    const int code = tool::Run(std::vector<std::string>(values + 1, values + count));
    if (!std::cout.flush()) Raise(Failure::DiskFull);
    return code;
  } catch (const Error& error) {
    std::cerr << tool::ShowError(error) << '\n';
  } catch (const std::bad_alloc&) {
    std::cerr << tool::ShowError(PlatformError(Failure::OutOfMemory)) << '\n';
  }
  return tool::kFailed;
}
