#include "hosts/csv.h"

#include <csv.h>

#include <array>
#include <charconv>
#include <exception>
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
  buffer_.resize(kBlock);
}

CsvWriter::~CsvWriter() {
  if (owns_file_ && file_) std::fclose(file_);
}

// A field is written where it stays, without asking for room at every byte. `most` is
// the most bytes that it may take.
char* CsvWriter::BeginField(std::size_t most) {
  if (buffer_.size() - used_ <= most) MakeRoom(most);
  if (!first_in_row_) buffer_[used_++] = ',';
  first_in_row_ = false;
  return buffer_.data() + used_;
}

void CsvWriter::MakeRoom(std::size_t most) {
  Flush();
  if (buffer_.size() <= most) buffer_.resize(most + 1);
}

void CsvWriter::Field(std::string_view utf8) {
  char* target = BeginField(2 * utf8.size() + 2);
  bool quoted = false;
  for (char c : utf8) {
    quoted |= kNeedsQuotes[static_cast<unsigned char>(c)];
    *target++ = c;
  }
  if (quoted)
    Quote(utf8);
  else
    EndField(target);
}

// The marks are looked for many characters at a time, and plain ASCII is narrowed on
// the way.
void CsvWriter::Field(TextView text) {
  char16_t bits = 0;
  std::uint16_t marks = 0;
  for (char16_t c : text) {
    bits |= c;
    marks |= static_cast<std::uint16_t>((c == u',') | (c == u'"') | (c == u'\r') | (c == u'\n'));
  }
  if (marks != 0 || bits >= 0x80) {
    utf8_.clear();
    AppendUtf8(utf8_, text);
    return Field(std::string_view(utf8_));
  }
  char* target = BeginField(text.size());
  for (char16_t c : text) *target++ = static_cast<char>(c);
  EndField(target);
}

void CsvWriter::Field(std::int64_t whole) {
  constexpr std::size_t kMost = 20;
  char* target = BeginField(kMost);
  EndField(std::to_chars(target, target + kMost, whole).ptr);
}

// The field that was begun, which has room for every character twice.
void CsvWriter::Quote(std::string_view utf8) {
  char* target = buffer_.data() + used_;
  *target++ = '"';
  for (char c : utf8) {
    if (c == '"') *target++ = '"';
    *target++ = c;
  }
  *target++ = '"';
  EndField(target);
}

void CsvWriter::EndRow() {
  if (used_ == buffer_.size()) MakeRoom(0);
  buffer_[used_++] = '\n';
  first_in_row_ = true;
}

void CsvWriter::Flush() {
  const bool written = std::fwrite(buffer_.data(), 1, used_, file_) == used_;
  used_ = 0;
  if (!written) Raise(Failure::DiskFull);
}

void CsvWriter::Finish() {
  Flush();
  const bool flushed = std::fflush(file_) == 0;
  const bool closed = !owns_file_ || std::fclose(std::exchange(file_, nullptr)) == 0;
  if (!flushed || !closed) Raise(Failure::DiskFull);
}

}  // namespace tovalin::tool
