#include "hosts/cli/spanish.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovalin::tool {
namespace {

struct Phrase {
  const char* english;
  const char* spanish;
};

constexpr Phrase kLabels[] = {
    {"Usage", "Uso"},
    {"OPTIONS", "OPCIONES"},
    {"SUBCOMMAND", "ORDEN"},
    {"SUBCOMMANDS", "ÓRDENES"},
    {"Positionals", "Argumentos"},
    {"REQUIRED", "(obligatorio)"},
    {"Excludes", "sin"},
    {"Needs", "con"},
    {"TEXT", "TEXTO"},
    {"TEXT ...", "TEXTO ..."},
    {"INT", "ENTERO"},
    {"UINT", "ENTERO"},
    {"FLOAT", "NÚMERO"},
};

// What CLI11 says of a command line: each "*" stands for a text, which "$1" and on give
// again. The first that fits holds.
constexpr Phrase kMessages[] = {
    {"A subcommand is required", "Falta la orden"},
    {"* is required", "Falta $1"},
    {"* excludes *", "$1 no va con $2"},
    {"* requires *", "$1 pide $2"},
    {"The following argument was not expected: *", "Sobra en la línea: $1"},
    {"The following arguments were not expected: *", "Sobran en la línea: $1"},
    {"*: * required * missing", "Falta el valor de $1"},
    {"*: * not in {*}", "$1: $2 no es uno de: $3"},
    {"*: Value * not in range * to *", "$1: $2 no está entre $3 y $4"},
    {"*: Number less or equal to 0: *", "$1: $2 no es un número mayor que 0"},
    {"*: Number less than 0: *", "$1: $2 es un número negativo"},
    {"Could not convert: * = *", "$1: $2 no es un valor que sirva"},
    {"*: too many inputs for a flag", "$1 se da una sola vez"},
    {"* was given a disallowed flag override", "$1 no lleva valor"},
};

/// What the stars of a pattern stand for in a message, or nothing if it does not fit.
std::optional<std::vector<std::string_view>> Fit(std::string_view pattern,
                                                 std::string_view message) {
  std::vector<std::string_view> texts;
  for (;;) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos) break;
    if (!message.starts_with(pattern.substr(0, star))) return std::nullopt;
    message.remove_prefix(star);
    pattern.remove_prefix(star + 1);
    const std::string_view next = pattern.substr(0, pattern.find('*'));
    const std::size_t end =
        next.size() == pattern.size() ? message.rfind(next) : message.find(next);
    if (end == std::string_view::npos) return std::nullopt;
    texts.push_back(message.substr(0, end));
    message.remove_prefix(end);
  }
  if (message != pattern) return std::nullopt;
  return texts;
}

std::string Filled(std::string_view pattern, const std::vector<std::string_view>& texts) {
  std::string filled;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '$')
      filled.append(texts.at(static_cast<std::size_t>(pattern[++i] - '1')));
    else
      filled.push_back(pattern[i]);
  }
  return filled;
}

std::string Translated(const std::string& message) {
  for (const Phrase& phrase : kMessages)
    if (const auto texts = Fit(phrase.english, message)) return Filled(phrase.spanish, *texts);
  return message;
}

}  // namespace

void SpeakSpanish(CLI::App& app) {
  const auto formatter = std::make_shared<CLI::Formatter>();
  for (const Phrase& label : kLabels) formatter->label(label.english, label.spanish);
  app.formatter(formatter);
  app.group("Órdenes");
  app.option_defaults()->group("Opciones");
  app.set_help_flag("-h,--help", "Muestra esta ayuda y termina");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return Translated(error.what()) + "\nCon --help se muestra la ayuda.\n";
  });
}

}  // namespace tovalin::tool
