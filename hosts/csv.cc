#include "hosts/csv.h"

#include <csv.h>

#include <array>
#include <charconv>
#include <exception>
#include <iterator>
#include <utility>

namespace tovalin::tool {
namespace {

constexpr std::size_t kBlock = 1 << 18;

// By character: whether a field that holds it is written in quotes.
constexpr auto kNeedsQuotes = [] {
  std::array<bool, 256> quoted{};
  for (unsigned char c : {',', '"', '\r', '\n'}) quoted[c] = true;
  return quoted;
}();

// What the callbacks of the parser share. Errors must not fly through its C code:
// they wait here.
struct Parsing {
  explicit Parsing(const std::function<void(CsvRow&)>& take) : take(take) {}

  const std::function<void(CsvRow&)>& take;
  CsvRow row;
  std::size_t fields = 0;
  std::exception_ptr error;

  void AddField(std::string_view text) {
    Try([&] {
      if (fields == row.size()) row.emplace_back();
      row[fields++].assign(text);
    });
  }
  void EndRow() {
    Try([&] {
      row.resize(std::exchange(fields, 0));
      take(row);
    });
  }

 private:
  template <class Step>
  void Try(Step step) {
    if (error) return;
    try {
      step();
    } catch (...) {
      error = std::current_exception();
    }
  }
};

void OnField(void* text, std::size_t length, void* parsing) {
  static_cast<Parsing*>(parsing)->AddField({static_cast<const char*>(text), length});
}

void OnRow(int, void* parsing) { static_cast<Parsing*>(parsing)->EndRow(); }

struct Parser {
  Parser() {
    if (csv_init(&state, 0) != 0) Raise(Failure::OutOfMemory);
    // Blanks belong to a field: codes may begin or end with them.
    csv_set_space_func(&state, [](unsigned char) { return 0; });
  }
  ~Parser() { csv_free(&state); }
  csv_parser state;
};

}  // namespace

void CsvReader::ForEachRow(const std::function<void(CsvRow&)>& take) {
  Parser parser;
  Parsing parsing(take);
  std::vector<char> block(kBlock);
  bool first = true;
  for (;;) {
    const std::size_t size = std::fread(block.data(), 1, block.size(), file_.get());
    if (size == 0) break;
    std::string_view bytes(block.data(), size);
    if (first && bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
    first = false;
    if (csv_parse(&parser.state, bytes.data(), bytes.size(), OnField, OnRow, &parsing) !=
        bytes.size())
      Raise(Failure::OutOfMemory);
    if (parsing.error) std::rethrow_exception(parsing.error);
  }
  if (std::ferror(file_.get())) RaiseAbout(Failure::PathAccess, path_);
  csv_fini(&parser.state, OnField, OnRow, &parsing);
  if (parsing.error) std::rethrow_exception(parsing.error);
}

CsvWriter::CsvWriter(const std::string& path)
    : file_(path.empty() ? stdout : std::fopen(path.c_str(), "wb")), owns_file_(!path.empty()) {
  if (!file_) RaiseAbout(Failure::PathAccess, path);
  buffer_.reserve(kBlock + 1024);
}

CsvWriter::~CsvWriter() {
  if (owns_file_ && file_) std::fclose(file_);
}

void CsvWriter::BeginField() {
  if (!first_in_row_) buffer_.push_back(',');
  first_in_row_ = false;
}

void CsvWriter::Field(std::string_view utf8) {
  BeginField();
  bool quoted = false;
  for (char c : utf8) quoted |= kNeedsQuotes[static_cast<unsigned char>(c)];
  if (quoted)
    AppendQuoted(utf8);
  else
    buffer_.append(utf8);
}

// The marks are looked for many characters at a time, and plain ASCII is narrowed
// straight into the buffer.
void CsvWriter::Field(TextView text) {
  BeginField();
  char16_t bits = 0;
  std::uint16_t marks = 0;
  for (char16_t c : text) {
    bits |= c;
    marks |= static_cast<std::uint16_t>((c == u',') | (c == u'"') | (c == u'\r') | (c == u'\n'));
  }
  if (marks != 0)
    AppendQuoted(ToUtf8(text));
  else if (bits >= 0x80)
    buffer_.append(ToUtf8(text));
  else
    buffer_.append(text.begin(), text.end());
}

void CsvWriter::Field(std::int64_t whole) {
  BeginField();
  char digits[24];
  buffer_.append(digits, std::to_chars(digits, std::end(digits), whole).ptr);
}

void CsvWriter::AppendQuoted(std::string_view utf8) {
  buffer_.push_back('"');
  for (;;) {
    const std::size_t quote = utf8.find('"');
    buffer_.append(utf8.substr(0, quote));
    if (quote == std::string_view::npos) break;
    buffer_.append("\"\"");
    utf8.remove_prefix(quote + 1);
  }
  buffer_.push_back('"');
}

void CsvWriter::EndRow() {
  buffer_.push_back('\n');
  first_in_row_ = true;
  if (buffer_.size() >= kBlock) Flush();
}

void CsvWriter::Flush() {
  const bool written = std::fwrite(buffer_.data(), 1, buffer_.size(), file_) == buffer_.size();
  buffer_.clear();
  if (!written) Raise(Failure::DiskFull);
}

void CsvWriter::Finish() {
  Flush();
  const bool flushed = std::fflush(file_) == 0;
  const bool closed = !owns_file_ || std::fclose(std::exchange(file_, nullptr)) == 0;
  if (!flushed || !closed) Raise(Failure::DiskFull);
}

}  // namespace tovalin::tool
