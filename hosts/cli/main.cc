#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <new>

#include "hosts/cli/command_line.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/help_commands.h"
#include "hosts/cli/input.h"
#include "hosts/cli/spanish.h"
#include "hosts/cli/system.h"
#include "tovalin/version.h"

// The command-line tool: a host of the library like any other.

namespace tovalin::tool {
namespace {

constexpr const char* kExitCodes =
    "Códigos de salida: 0, terminado; 1, faltas en una fórmula, celdas con error, una\n"
    "exportación que falló o fallos en un archivo plano; 2, un error, que se cuenta en la\n"
    "salida de errores; 3, advertencias de una revisión; 100 y más, una línea de órdenes que\n"
    "no se entiende. De varias líneas o celdas cuenta la peor.";

void AddSymbolOptions(CLI::App& command, SymbolOptions& options) {
  // One value after each option, as often as it is given: the formula may follow.
  const auto repeated = [&](const char* name, std::vector<std::string>& values, const char* help) {
    command.add_option(name, values, help)->take_all()->allow_extra_args(false);
  };
  repeated("--var", options.variables, "Una variable, NOMBRE=VALOR");
  repeated("--formula", options.formulas, "Una variable con fórmula, NOMBRE=FÓRMULA");
  repeated("--function", options.functions, "Registra una función por su nombre");
  command.add_flag("--system-constants", options.system_constants,
                   "Registra las diez constantes del sistema");
}

void AddEncoding(CLI::App& command, std::string& encoding, const char* help) {
  command.add_option("--encoding", encoding, help)
      ->type_name("TEXTO")
      ->check(CLI::IsMember({std::string(kUtf8Name), std::string(kCodePageName)}));
}

void AddExportOptions(CLI::App& command, ExportOptions& options) {
  command.add_option("IN", options.input, "El archivo CSV; - es la entrada estándar")->required();
  command
      .add_option("--fields", options.fields,
                  "Un CSV con las columnas name, type (código), size y column (de IN, desde 0)")
      ->required();
  AddEncoding(command, options.encoding, "De los archivos CSV: utf-8 (si no se dice) o 1252");
  command.add_option("--rows", options.rows, "Cuántas filas, o all (todas)");
  command.add_flag("--fixed", options.fixed, "De ancho fijo, en lugar de delimitado");
  command.add_option("--date-order", options.date_order, "DMY, DYM, MDY, MYD, YDM, YMD o AMD");
  command.add_flag("--year4", options.year4, "Años de cuatro cifras");
  command.add_option("--date-separator", options.date_separator, "Entre las partes de una fecha");
  command.add_option("--text-separator", options.text_separator, "Alrededor de los textos");
  command.add_option("OUT", options.output, "La ruta de los dos archivos, sin .txt ni .ref")
      ->required();
}

void AddLayoutOption(CLI::App& command, FlatOptions& options) {
  command
      .add_option("--layout", options.layout,
                  "El diseño: JSON, un schema.ini o el .ref de una exportación")
      ->required();
  command.add_option("--section", options.section, "Del schema.ini; si no se dice, la primera");
}

// A formula may begin with "-": a blank in front keeps it from being taken for
// an option.
std::vector<std::string> ShieldFormulas(std::vector<std::string> arguments) {
  const bool takes_formula =
      arguments.size() > 1 && (arguments[0] == "eval" || arguments[0] == "check" ||
                               arguments[0] == "postfix" || arguments[0] == "review");
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
    SpeakSpanish(app_);
    app_.require_subcommand(1);
    app_.allow_windows_style_options(false);  // "/" begins a path
    app_.footer(kExitCodes);
    app_.set_version_flag("--version", std::string("tovalin ") + kVersion,
                          "Muestra la versión y termina");
    AddFormulaCommands();
    AddReview();
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
      throw CLI::ParseError("No existe la orden " + arguments[0], CLI::ExitCodes::ExtrasError);
  }

  CLI::App& Add(const char* name, const char* help, std::function<int()> run) {
    CLI::App* command = app_.add_subcommand(name, help);
    SpeakSpanish(*command);
    command->callback([this, run = std::move(run)] { chosen_ = run; });
    return *command;
  }

  void AddFormulaCommands() {
    CLI::App& eval = Add("eval", "Evalúa una fórmula", [this] { return Eval(); });
    AddSymbolOptions(eval, symbols_);
    formula_option_ = eval.add_option("FORMULA", formula_, "La fórmula");
    lines_option_ =
        eval.add_option("--lines", lines_,
                        "Un archivo con una fórmula en cada línea; - es la entrada estándar")
            ->excludes(formula_option_);
    for (CLI::App* command : {&Add("check", "Muestra los elementos de una fórmula, o sus faltas",
                                   [this] { return RunCheck(symbols_, formula_); }),
                              &Add("postfix", "Muestra el texto posfijo de una fórmula",
                                   [this] { return RunPostfix(symbols_, formula_); })}) {
      command->add_option("FORMULA", formula_, "La fórmula")->required();
      AddSymbolOptions(*command, symbols_);
    }
  }

  void AddReview() {
    CLI::App& review =
        Add("review", "Revisa una fórmula sin evaluarla", [this] { return Review(); });
    AddSymbolOptions(review, review_.symbols);
    CLI::Option* formula = review.add_option("FORMULA", review_.formula, "La fórmula");
    CLI::Option* lines =
        review
            .add_option("--lines", review_.lines,
                        "Un archivo con una fórmula por línea, - para la entrada estándar")
            ->excludes(formula);
    CLI::Option* formulas =
        review.add_option("--formulas", review_.formulas, "Un archivo de líneas Nombre = fórmula")
            ->excludes(formula)
            ->excludes(lines);
    review
        .add_option("--columns", review_.columns,
                    "Un archivo CSV cuyo encabezado nombra las columnas de las fórmulas")
        ->needs(formulas);
    review.add_flag("--json", review_.json, "Escribe lo hallado como JSON");
    review.footer(
        "Escribe una línea por hallazgo: clase, código, inicio, largo, mensaje y sugerencia,\n"
        "separados por tabuladores; con --lines y --formulas, además la línea o el nombre.\n"
        "Código de salida: 0 sin hallazgos o solo con notas, 1 con errores, 3 con advertencias.");
    review_given_ = {formula, lines, formulas};
  }

  int Review() const {
    if (std::ranges::none_of(review_given_, [](const CLI::Option* option) { return !!*option; }))
      RaiseAbout(Failure::ArgumentNotOptional, "FORMULA, --lines, --formulas");
    return RunReview(review_);
  }

  int Eval() const {
    if (*lines_option_) return RunEvalLines(symbols_, lines_);
    if (!*formula_option_) RaiseAbout(Failure::ArgumentNotOptional, "FORMULA, --lines");
    return RunEval(symbols_, formula_);
  }

  void AddFileCommands() {
    CLI::App& table = Add("table", "Evalúa fórmulas con nombre para cada fila de un CSV",
                          [this] { return RunTable(table_); });
    table.add_option("IN", table_.input, "El archivo CSV; - es la entrada estándar")->required();
    table.add_option("--formulas", table_.formulas, "Un archivo de líneas Nombre = fórmula")
        ->required();
    table.add_option("-o,--output", table_.output,
                     "El CSV que se escribe, que aparece completo o no aparece");
    table.add_flag("--quiet", table_.quiet,
                   "No dice lo que una revisión encuentra en las fórmulas");
    AddEncoding(table, table_.encoding, "De los dos archivos CSV: utf-8 (si no se dice) o 1252");
    AddExportOptions(Add("export", "Exporta las filas de un CSV con clsFileExport",
                         [this] { return RunExport(export_); }),
                     export_);
  }

  void AddFlatCommands() {
    CLI::App& flat = *app_.add_subcommand("flat", "Archivos planos con diseño");
    SpeakSpanish(flat);
    flat.require_subcommand(1);
    const auto add = [&](const char* name, const char* help, int (*run)(const FlatOptions&)) {
      CLI::App* command = flat.add_subcommand(name, help);
      SpeakSpanish(*command);
      command->callback([this, run] { chosen_ = [this, run] { return run(flat_); }; });
      return command;
    };
    CLI::App* write = add("write", "Escribe las filas de un CSV", RunFlatWrite);
    CLI::App* read = add("read", "Lee un archivo plano como CSV", RunFlatRead);
    CLI::App* verify =
        add("verify", "Verifica un archivo plano, sus cuentas y sus totales", RunFlatVerify);
    for (CLI::App* command : {write, read, verify}) {
      AddLayoutOption(*command, flat_);
      command->add_option("IN", flat_.input, "El archivo que se lee")->required();
    }
    for (CLI::App* command : {write, read})
      AddEncoding(*command, flat_.encoding, "Del archivo CSV: utf-8 (si no se dice) o 1252");
    write
        ->add_option("-o,--output", flat_.output,
                     "El archivo plano, que aparece completo o no aparece")
        ->required();
    read->add_option("-o,--output", flat_.output,
                     "El archivo CSV, que aparece completo o no aparece");
    write
        ->add_option("--param", flat_.parameters, "Un valor de encabezados y cierres, NOMBRE=VALOR")
        ->take_all()
        ->allow_extra_args(false);
    write->add_flag("--partial", flat_.partial, "Publica el archivo sin las filas rechazadas");
    read->add_option("--record", flat_.record,
                     "La clase de registro; si no se dice, el primer detalle");
    CLI::App* layout = add("layout", "Muestra un diseño como JSON", RunFlatLayout);
    layout->add_option("--from", flat_.layout, "JSON, un schema.ini o el .ref de una exportación")
        ->required();
    layout->add_option("--section", flat_.section, "Del schema.ini; si no se dice, la primera");
  }

  CLI::App& AddListing(const char* name, const char* help, int (*run)(Listing)) {
    CLI::App& command = Add(name, help, [this, run] { return run(listing_); });
    command.add_flag_callback(
        "--json", [this] { listing_ = Listing::Json; },
        "Con parámetros, textos y ejemplos, en JSON");
    return command;
  }

  void AddOtherCommands() {
    AddListing("functions", "Lista las funciones", RunFunctions)
        .add_flag_callback(
            "--markdown", [this] { listing_ = Listing::Markdown; }, "Las tablas de una página")
        ->group("");  // for docs/functions.md
    AddListing("operators", "Lista los operadores", RunOperators);
    AddListing("constants", "Lista las constantes del sistema", RunConstants);
    Add("trace", "Muestra el rastro de la última evaluación", [this] { return RunTrace(follow_); })
        .add_flag("--follow", follow_,
                  "Lo muestra otra vez con cada cambio, hasta que se interrumpa");
    Add("selftest", "Comprueba la biblioteca con las tablas de conformidad", [this] {
      return RunSelftest(tables_);
    }).add_option("FILE", tables_, "Tablas o carpetas de tablas");
    CLI::App& describe = Add("describe", "Muestra la descripción de clases y enumeraciones",
                             [this] { return RunDescribe(describe_); });
    describe.add_option("NAME", describe_.name,
                        "Una clase o una enumeración; si no se dice, todas");
    CLI::Option* json = describe.add_flag("--json", describe_.json, "En JSON");
    CLI::Option* page =
        describe.add_flag("--markdown", describe_.markdown, "Todas, como docs/reference.md");
    CLI::Option* ids =
        describe.add_flag("--ids", describe_.ids, "Todos los identificadores, uno en cada línea");
    json->excludes(page)->excludes(ids);
    page->excludes(ids);
    call_ =
        &Add("call",
             "Llama a un miembro: CLASE [PROPIEDAD=VALOR]... MIEMBRO [ARGUMENTO]...; sin MIEMBRO "
             "lista los miembros de la clase, y sin CLASE las clases",
             [this] { return RunCall(call_->remaining()); });
    call_->prefix_command();
    AddHelpCommands();
  }

  void AddHelpCommands() {
    CLI::App& help = Add("help", "Muestra la ayuda de una orden",
                         [this] { return manual_ ? RunManual(app_) : RunHelp(app_, help_words_); });
    help.add_option("ORDEN", help_words_, "Las palabras de la orden; ninguna, todas las órdenes");
    help.add_flag("--man", manual_, "Muestra la página del manual, para man");
    Add("completion", "Muestra lo que bash necesita para completar órdenes",
        [this] { return RunCompletion(app_); })
        .add_option("SHELL", shell_, "El intérprete de órdenes")
        ->type_name("TEXTO")
        ->required()
        ->check(CLI::IsMember({std::string("bash")}));
  }

  CLI::App app_{"Evaluador de fórmulas y caja de herramientas contables", "tovalin"};
  std::function<int()> chosen_;
  SymbolOptions symbols_;
  std::string formula_;
  std::string lines_;
  CLI::Option* formula_option_ = nullptr;
  CLI::Option* lines_option_ = nullptr;
  ReviewOptions review_;
  std::array<CLI::Option*, 3> review_given_{};
  TableOptions table_;
  ExportOptions export_;
  FlatOptions flat_;
  DescribeOptions describe_;
  bool follow_ = false;
  std::vector<std::string> tables_;
  CLI::App* call_ = nullptr;
  Listing listing_ = Listing::Plain;
  std::vector<std::string> help_words_;
  bool manual_ = false;
  std::string shell_;
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
