#include <iostream>
#include <optional>

#include "frame/settings/live_trace.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/system.h"

// tovalin trace.

namespace tovalin::tool {
namespace {

std::string ReadTraceLines() {
  const TraceTexts texts = ReadTrace();
  std::string lines;
  for (std::size_t i = 0; i < kTraceKeys.size(); ++i) {
    const std::string text = ToUtf8(texts[i].value_or(Text()));
    lines.append(ToUtf8(kTraceKeys[i])).append("=").append(OneLine(text)).append("\n");
  }
  return lines;
}

// A file that cannot be read at this moment may be readable at the next.
std::optional<std::string> TryReadTrace() {
  try {
    return ReadTraceLines();
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
    std::cout << ReadTraceLines();
  return kDone;
}

}  // namespace tovalin::tool
