#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iostream>
#include <new>

#include "hosts/cli/command_line.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/input.h"
#include "hosts/cli/system.h"
#include "tovalin/version.h"

// The command-line tool: a host of the library like any other.

namespace tovalin::tool {
namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 faults in a formula, cells with errors, an export that failed,\n"
    "or faults in a flat file; 2 a raised error, told on standard error; 100 and more a\n"
    "command line that is not understood. Of several lines or cells the worst counts.";

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

void AddEncoding(CLI::App& command, std::string& encoding, const char* help) {
  command.add_option("--encoding", encoding, help)
      ->check(CLI::IsMember({std::string(kUtf8Name), std::string(kCodePageName)}));
}

void AddExportOptions(CLI::App& command, ExportOptions& options) {
  command.add_option("IN", options.input, "The CSV file, - for standard input")->required();
  command
      .add_option("--fields", options.fields,
                  "A CSV file with the columns name, type (code), size and column (of IN, from 0)")
      ->required();
  AddEncoding(command, options.encoding, "Of the CSV files: utf-8 (the default) or 1252");
  command.add_option("--rows", options.rows, "How many rows, or all");
  command.add_flag("--fixed", options.fixed, "Fixed width, in place of delimited");
  command.add_option("--date-order", options.date_order, "DMY, DYM, MDY, MYD, YDM, YMD or AMD");
  command.add_flag("--year4", options.year4, "Years of four digits");
  command.add_option("--date-separator", options.date_separator, "Between the parts of a date");
  command.add_option("--text-separator", options.text_separator, "Around texts");
  command.add_option("OUT", options.output, "The path of the two files, without .txt and .ref")
      ->required();
}

void AddLayoutOption(CLI::App& command, FlatOptions& options) {
  command
      .add_option("--layout", options.layout,
                  "The layout: JSON, a schema.ini or the .ref of an export")
      ->required();
  command.add_option("--section", options.section, "Of the schema.ini, by default the first");
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

// The commands, and the one that was chosen with its options.
class CommandLine {
 public:
  CommandLine() {
    app_.require_subcommand(1);
    app_.allow_windows_style_options(false);  // "/" begins a path
    app_.footer(kExitCodes);
    app_.set_version_flag("--version", std::string("tovalin ") + kVersion);
    AddFormulaCommands();
    AddFileCommands();
    AddFlatCommands();
    AddOtherCommands();
  }

  int Run(std::vector<std::string> arguments) {
    arguments = ShieldFormulas(std::move(arguments));
    try {
      RequireKnownCommand(arguments);
      std::reverse(arguments.begin(), arguments.end());  // as CLI11 wants them
      app_.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
      return app_.exit(error);
    }
    return chosen_();
  }

 private:
  // CLI11 itself would only say that there is none.
  void RequireKnownCommand(const std::vector<std::string>& arguments) const {
    if (arguments.empty() || arguments[0].starts_with('-')) return;
    const auto is_named = [&](const CLI::App* command) {
      return command->get_name() == arguments[0];
    };
    if (std::ranges::none_of(app_.get_subcommands(nullptr), is_named))
      throw CLI::ParseError("Unknown command: " + arguments[0], CLI::ExitCodes::ExtrasError);
  }

  CLI::App& Add(const char* name, const char* help, std::function<int()> run) {
    CLI::App* command = app_.add_subcommand(name, help);
    command->callback([this, run = std::move(run)] { chosen_ = run; });
    return *command;
  }

  void AddFormulaCommands() {
    CLI::App& eval = Add("eval", "Evaluates a formula", [this] { return Eval(); });
    AddSymbolOptions(eval, symbols_);
    formula_option_ = eval.add_option("FORMULA", formula_, "The formula");
    lines_option_ =
        eval.add_option("--lines", lines_, "A file with one formula a line, - for standard input")
            ->excludes(formula_option_);
    for (CLI::App* command : {&Add("check", "Prints the tokens of a formula, or its faults",
                                   [this] { return RunCheck(symbols_, formula_); }),
                              &Add("postfix", "Prints the postfix text of a formula",
                                   [this] { return RunPostfix(symbols_, formula_); })}) {
      command->add_option("FORMULA", formula_, "The formula")->required();
      AddSymbolOptions(*command, symbols_);
    }
  }

  int Eval() const {
    if (*lines_option_) return RunEvalLines(symbols_, lines_);
    if (!*formula_option_) RaiseAbout(Failure::ArgumentNotOptional, "FORMULA, --lines");
    return RunEval(symbols_, formula_);
  }

  void AddFileCommands() {
    CLI::App& table = Add("table", "Evaluates named formulas for every row of a CSV file",
                          [this] { return RunTable(table_); });
    table.add_option("IN", table_.input, "The CSV file, - for standard input")->required();
    table.add_option("--formulas", table_.formulas, "A file of lines Name = formula")->required();
    table.add_option("-o,--output", table_.output,
                     "The CSV file to write, which appears whole or not at all");
    AddEncoding(table, table_.encoding, "Of both CSV files: utf-8 (the default) or 1252");
    AddExportOptions(Add("export", "Exports the rows of a CSV file with clsFileExport",
                         [this] { return RunExport(export_); }),
                     export_);
  }

  void AddFlatCommands() {
    CLI::App& flat = *app_.add_subcommand("flat", "Flat files by a layout");
    flat.require_subcommand(1);
    const auto add = [&](const char* name, const char* help, int (*run)(const FlatOptions&)) {
      CLI::App* command = flat.add_subcommand(name, help);
      command->callback([this, run] { chosen_ = [this, run] { return run(flat_); }; });
      return command;
    };
    CLI::App* write = add("write", "Writes the rows of a CSV file", RunFlatWrite);
    CLI::App* read = add("read", "Reads a flat file as CSV", RunFlatRead);
    CLI::App* verify = add("verify", "Checks a flat file, its counts and totals", RunFlatVerify);
    for (CLI::App* command : {write, read, verify}) {
      AddLayoutOption(*command, flat_);
      command->add_option("IN", flat_.input, "The file to be read")->required();
    }
    for (CLI::App* command : {write, read})
      AddEncoding(*command, flat_.encoding, "Of the CSV file: utf-8 (the default) or 1252");
    write->add_option("-o,--output", flat_.output, "The flat file, whole or not at all")
        ->required();
    read->add_option("-o,--output", flat_.output, "The CSV file, whole or not at all");
    write->add_option("--param", flat_.parameters, "A value of headers and trailers, NAME=VALUE")
        ->take_all()
        ->allow_extra_args(false);
    write->add_flag("--partial", flat_.partial, "Publishes the file without the rows refused");
    read->add_option("--record", flat_.record, "The kind of record, by default the first detail");
    CLI::App* layout = add("layout", "Prints a layout as JSON", RunFlatLayout);
    layout->add_option("--from", flat_.layout, "JSON, a schema.ini or the .ref of an export")
        ->required();
    layout->add_option("--section", flat_.section, "Of the schema.ini, by default the first");
  }

  void AddOtherCommands() {
    Add("functions", "Lists the functions", RunFunctions);
    Add("operators", "Lists the operators", RunOperators);
    Add("constants", "Lists the constants of the system", RunConstants);
    Add("trace", "Shows the trace of the last evaluation", [this] {
      return RunTrace(follow_);
    }).add_flag("--follow", follow_, "Shows it again at every change, until interrupted");
    Add("selftest", "Checks the library against the conformance tables", [this] {
      return RunSelftest(tables_);
    }).add_option("FILE", tables_, "Tables or directories of tables");
    CLI::App& describe = Add("describe", "Prints the description of classes and enumerations",
                             [this] { return RunDescribe(describe_); });
    describe.add_option("NAME", describe_.name, "A class or an enumeration, by default all");
    CLI::Option* json = describe.add_flag("--json", describe_.json, "As JSON");
    CLI::Option* page =
        describe.add_flag("--markdown", describe_.markdown, "All, as docs/reference.md");
    CLI::Option* ids = describe.add_flag("--ids", describe_.ids, "All ids, a line each");
    json->excludes(page)->excludes(ids);
    page->excludes(ids);
    call_ = &Add("call",
                 "Calls a member: CLASS [PROPERTY=VALUE]... MEMBER [ARG]...; without MEMBER lists "
                 "the members of a class, without CLASS the classes",
                 [this] { return RunCall(call_->remaining()); });
    call_->prefix_command();
  }

  CLI::App app_{"Formula evaluator and business toolbox", "tovalin"};
  std::function<int()> chosen_;
  SymbolOptions symbols_;
  std::string formula_;
  std::string lines_;
  CLI::Option* formula_option_ = nullptr;
  CLI::Option* lines_option_ = nullptr;
  TableOptions table_;
  ExportOptions export_;
  FlatOptions flat_;
  DescribeOptions describe_;
  bool follow_ = false;
  std::vector<std::string> tables_;
  CLI::App* call_ = nullptr;
};

}  // namespace
}  // namespace tovalin::tool

int main(int count, char** values) {
  using namespace tovalin;
  try {
    tool::UseBytes();
    const int code = tool::CommandLine().Run(tool::Arguments(count, values));
    if (!std::cout.flush()) Raise(Failure::DiskFull);
    return code;
  } catch (const Error& error) {
    std::cerr << tool::ShowError(error) << '\n';
  } catch (const std::bad_alloc&) {
    std::cerr << tool::ShowError(PlatformError(Failure::OutOfMemory)) << '\n';
  }
  return tool::kFailed;
}
