#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tovalin/evaluador.h"
#include "tovalin/variant.h"

// What the commands of the tool share. Every command answers the exit code.

namespace tovalin::tool {

inline constexpr int kDone = 0;
inline constexpr int kFaults = 1;  // messages in LastError, or cells with errors
inline constexpr int kFailed = 2;  // a raised error
inline constexpr int kWarned = 3;  // a review that found no errors, but warnings

/// A value as the command line writes it: a prefix fixes the subtype ("i:12"
/// Integer, "l:" Long, "f:" Single, "d:" Double, "c:" Currency, "t:" Date, "b:"
/// Boolean, "y:" Byte, "s:" String, "null:", "empty:", "missing:"); without one,
/// a text that reads as a number is a Double and any other is a String. Raises
/// the errors of the conversion, and kObjectError for bytes that are not UTF-8.
Variant ReadValue(std::string_view argument);
/// The same for a parameter of a known subtype: text stays text, "007" included.
Variant ReadValue(std::string_view argument, Subtype wanted);

/// "NAME=VALUE" split at the first "="; raises 5 without one.
struct Assignment {
  Text name;
  std::string value;
};
Assignment ReadAssignment(std::string_view argument);

/// The text of a value for a person: Null as the empty text, an object by its
/// class, a Collection by its items, one a line.
std::string ShowValue(const Variant& value);

/// "Error NUMBER (SOURCE): DESCRIPTION".
std::string ShowError(const Error& error);

/// `text` with each line feed as "\n", carriage return as "\r" and backslash as "\\".
std::string OneLine(std::string_view text);

/// The code of data types that fits a value.
std::int32_t DataTypeOf(const Variant& value);

/// `text` filled with blanks to `width` characters, for tables.
std::string Padded(TextView text, std::size_t width);

/// The symbols that the commands with a formula take.
struct SymbolOptions {
  std::vector<std::string> variables;
  std::vector<std::string> formulas;
  std::vector<std::string> functions;
  bool system_constants = false;
};

/// An evaluator with those symbols whose host is the tool: it answers ISNULL(
/// and raises an error that names any other function that nobody implements.
Ref<Evaluador> MakeEvaluator(const SymbolOptions& options);
/// Adds those symbols alone.
void AddSymbols(Evaluador& evaluator, const SymbolOptions& options);

int RunEval(const SymbolOptions& options, const std::string& formula);
/// The worst of the codes of the lines.
int RunEvalLines(const SymbolOptions& options, const std::string& path);
int RunCheck(const SymbolOptions& options, const std::string& formula);
int RunPostfix(const SymbolOptions& options, const std::string& formula);

/// One of `formula`, `lines` and `formulas` is given.
struct ReviewOptions {
  SymbolOptions symbols;
  std::string formula;
  std::string lines;
  std::string formulas;
  std::string columns;  // a CSV file whose header names the columns of `formulas`
  bool json = false;
};
/// kFaults with errors, kWarned with warnings alone.
int RunReview(const ReviewOptions& options);

struct TableOptions {
  std::string input;
  std::string formulas;
  std::string output;    // empty: standard output
  std::string encoding;  // of both, empty: UTF-8
  bool quiet = false;    // does not tell what a review finds in the formulas
};
int RunTable(const TableOptions& options);

struct ExportOptions {
  std::string input;
  std::string fields;
  std::string output;        // without extension
  std::string encoding;      // of the CSV files, empty: UTF-8
  std::string rows = "all";  // or how many
  bool fixed = false;
  std::optional<std::string> date_order;
  bool year4 = false;
  std::string date_separator;
  std::string text_separator;
};
/// kFaults when the class answers False; what is on the disk is told then.
int RunExport(const ExportOptions& options);

struct FlatOptions {
  std::string layout;
  std::string input;
  std::string output;    // empty: standard output
  std::string encoding;  // of the CSV file, empty: UTF-8
  std::string record;    // a kind of record
  std::string section;   // of a schema.ini
  std::vector<std::string> parameters;
  bool partial = false;
};
/// The rows of a CSV file to a flat file. kFaults when rows were refused, with each fault
/// on standard error.
int RunFlatWrite(const FlatOptions& options);
/// The records of a flat file to a CSV file.
int RunFlatRead(const FlatOptions& options);
int RunFlatVerify(const FlatOptions& options);
/// Prints a layout as JSON, from JSON, a schema.ini or the description of an export.
int RunFlatLayout(const FlatOptions& options);

/// How the commands that list the vocabulary print it.
enum class Listing { Plain, Json, Markdown };
int RunFunctions(Listing listing);
int RunOperators(Listing listing);
int RunConstants(Listing listing);
/// Prints the trace of the last evaluation; with `follow`, again whenever it
/// changes, until the process is asked to end.
int RunTrace(bool follow);
struct DescribeOptions {
  std::string name;  // of a class or an enumeration, empty for all
  bool json = false;
  bool markdown = false;
  bool ids = false;
};
/// Prints the description of the classes.
int RunDescribe(const DescribeOptions& options);
int RunCall(const std::vector<std::string>& arguments);
/// Runs the conformance tables of files and directories, by default those of the
/// source tree or of the installation; kFaults when a case differs.
int RunSelftest(std::vector<std::string> paths);

}  // namespace tovalin::tool
