#include "hosts/cli/help_commands.h"

#include <algorithm>
#include <iostream>
#include <string_view>

#include "hosts/cli/command_line.h"
#include "tovalin/version.h"

// tovalin help, and its page of the manual.

namespace tovalin::tool {
namespace {

const CLI::App* FindCommand(const CLI::App& app, const std::string& name) {
  const auto commands = app.get_subcommands(nullptr);
  const auto found = std::ranges::find(commands, name, &CLI::App::get_name);
  return found == commands.end() ? nullptr : *found;
}

// --- The page of the manual -------------------------------------------------

/// A text as roff takes it for nothing but a text.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (char c : text) {
    if (c == '\\')
      escaped.append("\\e");
    else if (c == '-')
      escaped.append("\\-");
    else
      escaped.push_back(c);
  }
  if (escaped.starts_with('.') || escaped.starts_with('\'')) escaped.insert(0, "\\&");
  return escaped;
}

void PrintOption(const CLI::Option& option, const CLI::FormatterBase& labels) {
  const bool positional = option.get_positional();
  std::cout << ".TP\n.B " << Escaped(option.get_name(positional, !positional));
  if (!positional && option.get_items_expected_max() > 0)
    std::cout << " \\fI" << Escaped(labels.get_label(option.get_type_name())) << "\\fR";
  std::cout << '\n' << Escaped(option.get_description()) << ".\n";
}

void PrintCommand(const CLI::App& command, const std::string& name) {
  const auto commands = command.get_subcommands(nullptr);
  std::cout << ".SS " << Escaped(name);
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional())
      std::cout << ' ' << (option->get_required() ? "" : "[") << option->get_name(true)
                << (option->get_required() ? "" : "]");
  std::cout << '\n' << Escaped(command.get_description()) << ".\n";
  for (const CLI::Option* option : command.get_options())
    if (option != command.get_help_ptr() && !option->get_group().empty())
      PrintOption(*option, *command.get_formatter());
  for (const CLI::App* inner : commands) PrintCommand(*inner, name + ' ' + inner->get_name());
}

}  // namespace

int RunHelp(const CLI::App& tool, const std::vector<std::string>& words) {
  const CLI::App* command = &tool;
  std::string name = tool.get_name();
  for (const std::string& word : words) {
    command = FindCommand(*command, word);
    if (!command) {
      std::cerr << "No existe la orden " << word << '\n';
      return static_cast<int>(CLI::ExitCodes::ExtrasError);
    }
    name.append(" ").append(word);
  }
  std::cout << command->get_formatter()->make_help(command, name, CLI::AppFormatMode::Normal);
  return kDone;
}

int RunManual(const CLI::App& tool) {
  std::cout << ".TH TOVALIN 1 \"\" \"Tovalin " << kVersion << "\" \"Manual de Tovalin\"\n"
            << ".SH NOMBRE\ntovalin \\- " << Escaped(tool.get_description())
            << "\n.SH SINOPSIS\n.B tovalin\n.I orden\n[\\fIopciones\\fR] [\\fIargumentos\\fR]\n"
            << ".SH ÓRDENES\n";
  for (const CLI::App* command : tool.get_subcommands(nullptr))
    PrintCommand(*command, command->get_name());
  std::cout << ".SH CÓDIGOS DE SALIDA\n" << Escaped(tool.get_footer()) << '\n';
  return kDone;
}

}  // namespace tovalin::tool
