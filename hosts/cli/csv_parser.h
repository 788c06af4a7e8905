#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/text/utf8.h"
#include "hosts/cli/encoding.h"

namespace tovalin::tool {

/// The fields of one row of a CSV file, in UTF-8. The row's memory is used again
/// for the next row.
using CsvRow = std::vector<std::string>;

/// Splits CSV text that comes in blocks into rows. A field is quoted as a whole or
/// not at all, '""' stands for a quote in a quoted one, and lines end with LF, CR LF
/// or CR. Empty lines are passed over.
///
/// Raises kObjectError, with file, line and column, for a quote within a field that is
/// not quoted, text behind a closing quote, and a quote that is never closed.
class CsvParser {
 public:
  /// `file` is its name for errors; `on_row` gets each row, and may swap it away.
  CsvParser(std::string file, char delimiter, std::function<void(CsvRow&)> on_row);

  /// Takes the next block of valid UTF-8, which ends with a whole character. Throws
  /// what `on_row` does.
  void Parse(std::string_view block);
  /// Ends the last row, which may have no line end.
  void Finish();

  /// Where the next block begins.
  Place Next() const { return {line_, characters_before_ + 1}; }

 private:
  enum class State {
    FieldStart,
    Plain,
    Quoted,
    QuoteClosed,  // or the first of two that stand for one
  };
  // A place that is counted out only if somebody asks.
  struct Mark {
    std::size_t line;
    std::size_t characters_before;
    const char* line_start;
    const char* at;
    Place Count() const {
      const auto bytes = static_cast<std::size_t>(at - line_start);
      return {line, characters_before + CountUtf8Characters({line_start, bytes}) + 1};
    }
  };

  const char* ParsePlain(const char* at);
  const char* ParseQuoted(const char* at);
  const char* ParseClosed(const char* at);
  const char* EndField(const char* at);
  const char* FindMark(const char* at) const;
  bool IsSeparator(char c) const { return c == delimiter_ || c == '\n' || c == '\r'; }
  void PassLineEnd(const char* at);
  void EndRow();
  std::string& Field();
  Mark MarkAt(const char* at) const { return {line_, characters_before_, line_start_, at}; }

  std::string file_;
  char delimiter_;
  std::function<void(CsvRow&)> on_row_;
  CsvRow row_;
  std::size_t fields_ = 0;  // of the row that are complete
  State state_ = State::FieldStart;
  Place opened_;  // the quote of the present field, from an earlier block
  Mark quote_{};  // the same in this block, if `at` is set

  const char* begin_ = nullptr;  // of the block
  const char* end_ = nullptr;
  bool after_return_ = false;  // the block before ended with CR
  std::size_t line_ = 1;
  const char* line_start_ = nullptr;   // or the block's
  std::size_t characters_before_ = 0;  // of the line, in earlier blocks
};

}  // namespace tovalin::tool
