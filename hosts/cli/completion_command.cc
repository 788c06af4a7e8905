#include <algorithm>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "hosts/cli/command_line.h"
#include "hosts/cli/help_commands.h"
#include "tovalin/describe.h"
#include "tovalin/factory.h"

// tovalin completion: the words that a command line may hold, and the function of bash
// that chooses among them.

namespace tovalin::tool {
namespace {

// Stands behind the words. A command is written "flat/write".
constexpr const char* kChoice = R"bash(
# The functions whose names begin with the end of a formula.
_tovalin_complete_function() {
  local formula=${cur#[\'\"]} fragment name
  fragment=${formula##*[^[:alnum:]_]}
  [[ -n $fragment ]] || return
  for name in $_tovalin_functions; do
    [[ ${name,,} != "${fragment,,}"* ]] || COMPREPLY+=("${formula%"$fragment"}$name")
  done
  compopt -o nospace 2>/dev/null
}

_tovalin() {
  local cur=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command='' class='' word words
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ " $_tovalin_commands " == *" ${command:+$command/}$word "* ]]; then
      command=${command:+$command/}$word
    elif [[ $command == call && -z $class ]]; then
      class=$word
    fi
  done
  if words=$(_tovalin_values "$command:$previous"); then
    :  # those of an option; without any, a file
  elif [[ $cur == -* ]]; then
    words=$(_tovalin_options "$command")
  elif [[ -n $class ]]; then
    words=$(_tovalin_members "$class")
  elif [[ -n $command && $_tovalin_of_formulas == *" $command "* ]]; then
    _tovalin_complete_function
    return
  else
    words=$(_tovalin_words "$command")
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
}
complete -o default -F _tovalin tovalin
)bash";

struct Command {
  std::string path;  // "flat/write", empty for the tool
  const CLI::App* app;
};

void Collect(const CLI::App& app, const std::string& path, std::vector<Command>& commands) {
  commands.push_back({path, &app});
  for (const CLI::App* inner : app.get_subcommands(nullptr))
    Collect(*inner, path.empty() ? inner->get_name() : path + '/' + inner->get_name(), commands);
}

/// The values of an option that takes one of a few, "TEXT:{utf-8,1252}", with blanks between.
std::string ChoicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find('{');
  const std::size_t close = type.rfind('}');
  if (open == std::string::npos || close == std::string::npos) return {};
  std::string choices = type.substr(open + 1, close - open - 1);
  std::ranges::replace(choices, ',', ' ');
  return choices;
}

std::vector<std::string> NamesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back('-' + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

void PrintRow(const std::string& pattern, const std::string& words) {
  std::cout << "    " << pattern << ") echo '" << words << "' ;;\n";
}

std::string Joined(const std::vector<std::string>& words) { return CLI::detail::join(words, " "); }

// A function of bash that gives for each command the words of `words_of`.
template <class WordsOf>
void PrintWords(const char* name, const std::vector<Command>& commands, WordsOf words_of) {
  std::cout << name << "() {\n  case $1 in\n";
  for (const Command& command : commands)
    if (const auto words = words_of(*command.app); !words.empty())
      PrintRow('\'' + command.path + '\'', Joined(words));
  std::cout << "  esac\n}\n";
}

std::vector<std::string> OptionsOf(const CLI::App& app) {
  std::vector<std::string> words;
  for (const CLI::Option* option : app.get_options())
    if (option->nonpositional() && !option->get_group().empty())
      std::ranges::copy(NamesOf(*option), std::back_inserter(words));
  return words;
}

// What stands at a place of its own: inner commands, the choices of arguments.
std::vector<std::string> WordsOf(const CLI::App& app) {
  std::vector<std::string> words;
  for (const CLI::App* inner : app.get_subcommands(nullptr)) words.push_back(inner->get_name());
  for (const CLI::Option* option : app.get_options())
    if (option->get_positional() && !ChoicesOf(*option).empty())
      words.push_back(ChoicesOf(*option));
  if (app.get_name() == "help")
    for (const CLI::App* other : app.get_parent()->get_subcommands(nullptr))
      words.push_back(other->get_name());
  if (app.get_name() == "call" || app.get_name() == "describe")
    for (const ClassInfo* info : Classes())
      if (info->create || app.get_name() == "describe") words.push_back(ToUtf8(info->name));
  return words;
}

// It fails for an option that takes no value.
void PrintValues(const std::vector<Command>& commands) {
  std::cout << "_tovalin_values() {\n  case $1 in\n";
  for (const Command& command : commands)
    for (const CLI::Option* option : command.app->get_options())
      if (option->nonpositional() && option->get_items_expected_max() > 0)
        for (const std::string& name : NamesOf(*option))
          PrintRow(command.path + ':' + name, ChoicesOf(*option));
  std::cout << "    *) return 1 ;;\n  esac\n}\n";
}

void PrintMembers() {
  std::cout << "_tovalin_members() {\n  case ${1,,} in\n";
  for (const ClassInfo* info : Classes()) {
    std::vector<std::string> names;
    for (const MemberInfo& member : info->members)
      if (names.empty() || names.back() != ToUtf8(member.name))
        names.push_back(ToUtf8(member.name));
    PrintRow(ToUtf8(ToLower(info->name)), Joined(names));
  }
  std::cout << "  esac\n}\n";
}

}  // namespace

int RunCompletion(const CLI::App& tool) {
  std::vector<Command> commands;
  Collect(tool, {}, commands);
  std::cout << "# Completa en bash las órdenes de tovalin:  source <(tovalin completion bash)\n"
            << "_tovalin_commands='";
  for (const Command& command : commands) std::cout << command.path << ' ';
  std::cout << "'\n_tovalin_of_formulas=' ";
  for (const Command& command : commands)
    if (command.app->get_option_no_throw("FORMULA")) std::cout << command.path << ' ';
  std::cout << "'\n_tovalin_functions='";
  const Ref<Campos> functions = Make<Evaluador>()->Functions();
  for (const Ref<Campo>& record : functions->List().Items())
    std::cout << ToUtf8(record->Name()) << ' ';
  std::cout << "'\n";
  PrintWords("_tovalin_options", commands, OptionsOf);
  PrintWords("_tovalin_words", commands, WordsOf);
  PrintValues(commands);
  PrintMembers();
  std::cout << kChoice;
  return kDone;
}

}  // namespace tovalin::tool
