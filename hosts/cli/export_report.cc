#include "hosts/cli/export_report.h"

#include <algorithm>
#include <filesystem>

#include "hosts/cli/system.h"

namespace tovalin::tool {
namespace {

// Long values by their beginning, with control characters as blanks.
std::string ShownValue(const Text& value) {
  constexpr std::size_t kMost = 60;
  Text shown = value.substr(0, kMost);
  std::ranges::replace_if(
      shown, [](char16_t c) { return c < u' '; }, u' ');
  return Quoted(ToUtf8(shown) + (value.size() > kMost ? "..." : ""));
}

// Where and why it failed. A row beyond the file is what the user asked for.
std::string Reason(const clsFileExport::FailureReport& failure, std::int32_t wanted,
                   std::size_t rows) {
  std::string reason;
  if (failure.row >= 0) reason.append("fila ").append(std::to_string(failure.row + 1));
  if (failure.row >= 0 && static_cast<std::size_t>(failure.row) >= rows)
    return reason + ": se pidieron " + std::to_string(wanted) + " filas y hay " +
           std::to_string(rows);
  if (!failure.field.empty())
    reason.append(reason.empty() ? "" : ", ").append("campo ").append(ToUtf8(failure.field));
  if (!failure.value.empty()) reason.append(", valor ").append(ShownValue(failure.value));
  if (!reason.empty()) reason.append(": ");
  return reason + ToUtf8(failure.error.description);
}

// What is left on the disk.
std::string Left(const clsFileExport::FailureReport& failure, const std::string& output) {
  using State = clsFileExport::FileState;
  const std::string data = output + ".txt";
  const std::string layout = output + ".ref";
  const std::string records = std::to_string(failure.records);
  if (failure.data == State::Untouched) return "No se escribió nada";
  std::string left;
  if (failure.data == State::Complete)
    left = data + " está completo (" + records + " registros)";
  else
    left = "Los registros anteriores a la falla (" + records + ") quedan en " + data +
           (failure.broken_record ? ", con una parte del siguiente" : "");
  if (failure.layout == State::Incomplete) return left + "; " + layout + " quedó incompleto";
  std::error_code ignored;
  const bool is_there = std::filesystem::exists(PathOf(layout), ignored);
  return left + "; " + layout + (is_there ? " es de antes y no los describe" : " no se escribió");
}

}  // namespace

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string DescribeFailure(const clsFileExport::FailureReport& failure, const std::string& output,
                            std::int32_t wanted, std::size_t rows) {
  return "La exportación falló (False): " + Reason(failure, wanted, rows) + '\n' +
         Left(failure, output) + '\n';
}

}  // namespace tovalin::tool
