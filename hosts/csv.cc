#include "hosts/csv.h"

#include <csv.h>

#include <cerrno>
#include <exception>
#include <utility>

#include "tovalin/error.h"

namespace tovalin::tool {
namespace {

constexpr std::size_t kBlock = 1 << 18;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File OpenInput(const std::string& path) {
  if (path == "-") return File(stdin);
  File file(std::fopen(path.c_str(), "rb"));
  if (file) return file;
  Raise(errno == ENOENT   ? Failure::FileNotFound
        : errno == EACCES ? Failure::PermissionDenied
                          : Failure::PathAccess);
}

// What the callbacks of the parser share. Errors must not fly through its C code:
// they wait here.
struct Parsing {
  const std::function<void(CsvRow&)>& take;
  CsvRow row;
  std::size_t fields = 0;
  std::exception_ptr error;

  void AddField(std::string_view text) {
    if (fields == row.size()) row.emplace_back();
    row[fields++].assign(text);
  }
  void EndRow() {
    if (error) return;
    try {
      row.resize(fields);
      take(row);
    } catch (...) {
      error = std::current_exception();
    }
    fields = 0;
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

void ReadCsv(const std::string& path, const std::function<void(CsvRow&)>& take) {
  const File file = OpenInput(path);
  Parser parser;
  Parsing parsing{take, {}, 0, nullptr};
  std::vector<char> block(kBlock);
  bool first = true;
  for (;;) {
    const std::size_t size = std::fread(block.data(), 1, block.size(), file.get());
    if (size == 0) break;
    std::string_view bytes(block.data(), size);
    if (first && bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
    first = false;
    if (csv_parse(&parser.state, bytes.data(), bytes.size(), OnField, OnRow, &parsing) !=
        bytes.size())
      Raise(Failure::OutOfMemory);
    if (parsing.error) std::rethrow_exception(parsing.error);
  }
  if (std::ferror(file.get())) Raise(Failure::PathAccess);
  csv_fini(&parser.state, OnField, OnRow, &parsing);
  if (parsing.error) std::rethrow_exception(parsing.error);
}

CsvWriter::CsvWriter(const std::string& path)
    : file_(path.empty() ? stdout : std::fopen(path.c_str(), "wb")), owns_file_(!path.empty()) {
  if (!file_) Raise(Failure::PathAccess);
  buffer_.reserve(kBlock + 1024);
}

CsvWriter::~CsvWriter() {
  if (owns_file_ && file_) std::fclose(file_);
}

void CsvWriter::Field(std::string_view text) {
  if (!first_in_row_) buffer_.push_back(',');
  first_in_row_ = false;
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
    buffer_.append(text);
    return;
  }
  buffer_.push_back('"');
  for (char c : text) {
    if (c == '"') buffer_.push_back('"');
    buffer_.push_back(c);
  }
  buffer_.push_back('"');
}

void CsvWriter::EndRow() {
  buffer_.push_back('\n');
  first_in_row_ = true;
  if (buffer_.size() >= kBlock) Flush();
}

void CsvWriter::Flush() {
  failed_ |= std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size();
  buffer_.clear();
}

void CsvWriter::Finish() {
  Flush();
  failed_ |= std::fflush(file_) != 0;
  if (owns_file_) failed_ |= std::fclose(std::exchange(file_, nullptr)) != 0;
  if (failed_) Raise(Failure::DiskFull);
}

}  // namespace tovalin::tool
