#include <array>
#include <iostream>
#include <optional>

#include "frame/settings_content.h"
#include "frame/settings_path.h"
#include "hosts/command_line.h"
#include "hosts/system.h"

// tovalin trace.

namespace tovalin::tool {
namespace {

constexpr std::array<TextView, 4> kKeys = {u"Expresion", u"Posfijo", u"Resultado",
                                           u"ElementosPila"};

// The four lines of one moment: key by key, the store would give values of
// several evaluations when a host is at work.
std::string ReadTrace() {
  const SettingsContent content = ReadContent(SettingsPath(u"Evaluador"));
  std::string lines;
  for (TextView key : kKeys) {
    const Text value = content.Find(u"Posfijo", key).value_or(Text());
    lines.append(ToUtf8(key)).append("=").append(OneLine(ToUtf8(value))).append("\n");
  }
  return lines;
}

// A file that cannot be read at this moment may be readable at the next.
std::optional<std::string> TryReadTrace() {
  try {
    return ReadTrace();
  } catch (const Error&) {
    return std::nullopt;
  }
}

void Follow() {
  const EndRequest end;
  std::string shown;
  do {
    const std::optional<std::string> trace = TryReadTrace();
    if (!trace || *trace == shown) continue;
    if (!shown.empty()) std::cout << '\n';
    std::cout << *trace << std::flush;
    shown = *trace;
  } while (std::cout && !end.CameWithin(200));
}

}  // namespace

int RunTrace(bool follow) {
  if (follow)
    Follow();
  else
    std::cout << ReadTrace();
  return kDone;
}

}  // namespace tovalin::tool
