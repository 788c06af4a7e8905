#include "hosts/cli/csv.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "frame/text/utf8.h"
#include "hosts/cli/system.h"

namespace tovalin::tool {
namespace {

constexpr std::size_t kBlock = 1 << 18;

// By character: whether a field that holds it is written in quotes.
constexpr auto kNeedsQuotes = [] {
  std::array<bool, 256> quoted{};
  for (const char c : {',', '"', '\r', '\n'}) quoted[static_cast<unsigned char>(c)] = true;
  return quoted;
}();

// The longest part of a character at the end of a block.
constexpr std::size_t kLongestRest = 3;

struct Separator {
  char character;
  std::string_view name;
};

constexpr Separator kOtherSeparators[] = {{';', "\";\""}, {'\t', "tabuladores"}};

}  // namespace

// What begins a file in UTF-16 is told by itself: no other encoding reads it.
std::string_view CsvReader::WithoutMark(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
    RaiseAt(path_, {}, "el archivo está en UTF-16; guárdelo en UTF-8");
  if (!bytes.starts_with(kByteOrderMark)) return bytes;
  encoding_ = Encoding::Utf8;
  return bytes.substr(kByteOrderMark.size());
}

// Answers how many bytes at the end wait for the next block.
std::size_t CsvReader::ParseBlock(CsvParser& parser, std::string_view bytes, bool is_last) {
  if (encoding_ == Encoding::CodePage1252) {
    utf8_.clear();
    AppendFromCodePage(utf8_, bytes);
    parser.Parse(utf8_);
    return 0;
  }
  const std::size_t valid = ValidUtf8Length(bytes);
  parser.Parse(bytes.substr(0, valid));
  const std::size_t rest = bytes.size() - valid;
  if (rest > kLongestRest || (rest > 0 && is_last))
    RaiseAt(path_, parser.Next(),
            "el texto no es UTF-8; con --encoding 1252 se lee en la página de códigos 1252");
  return rest;
}

void CsvReader::ForEachRow(const std::function<void(CsvRow&)>& on_row) {
  CsvParser parser(path_, ',', on_row);
  std::vector<char> block(kBlock);
  std::size_t waiting = 0;
  for (bool first = true, more = true; more; first = false) {
    const std::size_t size =
        std::fread(block.data() + waiting, 1, block.size() - waiting, file_.get());
    more = size > 0;
    std::string_view bytes(block.data(), waiting + size);
    if (first) bytes = WithoutMark(bytes);
    waiting = ParseBlock(parser, bytes, !more);
    std::copy_n(bytes.end() - waiting, waiting, block.begin());
  }
  if (std::ferror(file_.get())) RaiseAbout(Failure::PathAccess, path_);
  parser.Finish();
}

std::string SeparatorHint(const CsvRow& header) {
  const auto count = [&](char c) {
    std::ptrdiff_t sum = 0;
    for (const std::string& field : header) sum += std::count(field.begin(), field.end(), c);
    return sum;
  };
  for (const Separator& separator : kOtherSeparators)
    if (count(separator.character) >= std::ssize(header))
      return "; el archivo parece separado por " + std::string(separator.name);
  return {};
}

CsvWriter::CsvWriter(const std::string& path, Encoding encoding)
    : file_(PathOf(path)), encoding_(encoding), buffer_(kBlock) {}

// A field is written where it stays, without a test of the capacity at every byte. `most` is
// the most bytes that it may take.
char* CsvWriter::BeginField(std::size_t most) {
  if (buffer_.size() - used_ <= most) Reserve(most);
  if (first_in_row_)
    row_ = used_;
  else
    buffer_[used_++] = ',';
  first_in_row_ = false;
  return buffer_.data() + used_;
}

void CsvWriter::Reserve(std::size_t most) {
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
  char* target = BeginField(text.size() + 2);
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
  if (used_ == row_ && !first_in_row_) Quote({});  // an empty line would be no row
  if (used_ == buffer_.size()) Reserve(0);
  buffer_[used_++] = '\n';
  first_in_row_ = true;
}

void CsvWriter::Flush() {
  const std::string_view utf8(buffer_.data(), used_);
  if (encoding_ == Encoding::CodePage1252)
    WriteInCodePage(utf8);
  else
    file_.Write(utf8);
  used_ = 0;
  row_ = kFlushed;
}

void CsvWriter::WriteInCodePage(std::string_view utf8) {
  encoded_.clear();
  const std::size_t taken = AppendInCodePage(encoded_, utf8);
  lines_ += static_cast<std::size_t>(std::ranges::count(utf8.substr(0, taken), '\n'));
  if (taken < utf8.size())
    RaiseOwn(u"tovalin", FromUtf8("La línea " + std::to_string(lines_) +
                                  " de la salida tiene un carácter que no está en la página de "
                                  "códigos 1252"));
  file_.Write(encoded_);
}

void CsvWriter::Finish() {
  Flush();
  file_.Commit();
}

}  // namespace tovalin::tool
