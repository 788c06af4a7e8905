#include <iostream>
#include <optional>
#include <sstream>

#include "hosts/cli/command_line.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/scratch_directory.h"

// The commands "table" and "export" over a CSV file of any bytes. A file that is good
// by an independent reading comes out of "table" with the cells that went in.
//
// An input has the CSV file, the formulas, the fields of the export, and then the
// choices of options.

namespace tovalin::fuzz {
namespace {

using Records = std::vector<std::vector<std::string>>;

// The records of a strictly written file: a field in quotes ends at its closing quote,
// one without has none. Nothing for any other file.
std::optional<Records> ReadStrictly(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  Records records;
  std::vector<std::string> record;
  while (!bytes.empty()) {
    std::string field;
    const bool quoted = bytes.front() == '"';
    if (quoted) {
      bytes.remove_prefix(1);
      for (;;) {
        const std::size_t quote = bytes.find('"');
        if (quote == std::string_view::npos) return std::nullopt;
        field.append(bytes.substr(0, quote));
        bytes.remove_prefix(quote + 1);
        if (!bytes.starts_with('"')) break;
        field.push_back('"');
        bytes.remove_prefix(1);
      }
    } else {
      field = bytes.substr(0, bytes.find_first_of(",\r\n\""));
      bytes.remove_prefix(field.size());
    }
    const bool more = bytes.starts_with(',');
    if (!more && !bytes.empty() && bytes.front() != '\r' && bytes.front() != '\n')
      return std::nullopt;
    const bool empty_line = record.empty() && field.empty() && !quoted && !more;
    if (!empty_line) record.push_back(field);
    if (more && bytes.size() == 1) record.emplace_back();
    if (!bytes.empty()) bytes.remove_prefix(1);
    if (more && !bytes.empty() && bytes.front() != '\r' && bytes.front() != '\n') continue;
    if (more && !bytes.empty()) record.emplace_back();
    if (!record.empty()) records.push_back(std::exchange(record, {}));
  }
  return records;
}

// Neither standard error nor standard output is of interest.
class Quiet {
 public:
  Quiet() : errors_(std::cerr.rdbuf(&sink_)), output_(std::cout.rdbuf(&sink_)) {}
  ~Quiet() {
    std::cerr.rdbuf(errors_);
    std::cout.rdbuf(output_);
  }

 private:
  std::stringbuf sink_;
  std::streambuf* errors_;
  std::streambuf* output_;
};

template <class Command>
int Run(Command command) {
  const Quiet quiet;
  try {
    return command();
  } catch (const Error&) {
    return tool::kFailed;
  }
}

void CheckCopied(const Records& in, const Records& out) {
  Require(in.size() == out.size(), "table writes each row once");
  const std::size_t columns = in.empty() ? 0 : in[0].size();
  for (std::size_t row = 0; row < in.size(); ++row)
    for (std::size_t i = 0; i < columns; ++i)
      Require(out[row].at(i) == (i < in[row].size() ? in[row][i] : ""), "table copies each cell");
}

void RunTable(const ScratchDirectory& directory, std::string_view csv) {
  const tool::TableOptions options{.input = directory.File("in.csv"),
                                   .formulas = directory.File("formulas"),
                                   .output = directory.File("out.csv")};
  if (Run([&] { return tool::RunTable(options); }) == tool::kFailed) return;
  const std::optional<Records> in = ReadStrictly(csv);
  if (!in) return;
  const std::optional<Records> out = ReadStrictly(directory.Read("out.csv"));
  Require(out.has_value(), "table writes a good file");
  CheckCopied(*in, *out);
}

void RunExport(const ScratchDirectory& directory, Input& input) {
  const char* const orders[] = {"", "DMY", "YMD", "MYD", "x"};
  const char* const separators[] = {"", "-", "/", "ñ"};
  const char* const rows[] = {"all", "all", "1", "0", "99", "-1"};
  tool::ExportOptions options;
  options.input = directory.File("in.csv");
  options.fields = directory.File("fields.csv");
  options.output = directory.File("export");
  options.rows = input.OneOf(rows);
  options.fixed = input.Below(2) != 0;
  options.date_order = input.OneOf(orders);
  options.year4 = input.Below(2) != 0;
  options.date_separator = input.OneOf(separators);
  options.text_separator = input.OneOf(separators);
  Run([&] { return tool::RunExport(options); });
}

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovalin::fuzz;
  static const ScratchDirectory directory;
  Input input(data, size);
  const std::string_view csv = input.TakeSection();
  directory.Write("in.csv", csv);
  directory.Write("formulas", input.TakeSection());
  directory.Write("fields.csv", input.TakeSection());
  RunTable(directory, csv);
  RunExport(directory, input);
  return 0;
}
