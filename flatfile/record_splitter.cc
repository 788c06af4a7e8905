#include "flatfile/record_splitter.h"

#include <algorithm>
#include <cstring>

#include "flatfile/encoding.h"
#include "flatfile/problem.h"
#include "flatfile/text_file.h"
#include "frame/object/error_translation.h"

namespace tovalin::flat {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kNotFound = std::string::npos;

}  // namespace

RecordSplitter::RecordSplitter(const Layout& layout, const Text& path)
    : layout_(layout), path_(path), file_(OpenToRead(path)) {
  while (!at_end_ && buffer_.size() < kByteOrderMark.size()) ReadMore();
  if (!IsSingleByte(layout.encoding) && buffer_.starts_with(kByteOrderMark))
    begin_ = kByteOrderMark.size();
}

// False at the end of the file.
bool RecordSplitter::ReadMore() {
  if (at_end_) return false;
  const std::size_t size = buffer_.size();
  buffer_.resize(size + kBlock);
  const std::size_t read = std::fread(buffer_.data() + size, 1, kBlock, file_.get());
  buffer_.resize(size + read);
  if (read < kBlock && std::ferror(file_.get())) throw ErrorAbout(Failure::PathAccess, path_);
  at_end_ = read == 0;
  return read > 0;
}

// Whether a record begins behind the one that was found.
bool RecordSplitter::HasMore() { return begin_ < buffer_.size() || ReadMore(); }

// The place behind the record's last byte, kNotFound when more must be read.
std::size_t RecordSplitter::FindEnd() {
  if (layout_.line_end == LineEnd::None)
    return buffer_.size() - begin_ >= layout_.length ? begin_ + layout_.length : kNotFound;
  const auto quote = static_cast<char>(layout_.quote);
  const bool has_quotes = !layout_.fixed && layout_.quote != 0;
  while (scanned_ < buffer_.size()) {
    const char* from = buffer_.data() + scanned_;
    const char* stop = buffer_.data() + buffer_.size();
    const auto* line_end =
        static_cast<const char*>(std::memchr(from, '\n', static_cast<std::size_t>(stop - from)));
    const char* end = line_end ? line_end : stop;
    // A line ends a record where the quotes before it are paired.
    if (has_quotes && std::count(from, end, quote) % 2 != 0) in_quotes_ = !in_quotes_;
    scanned_ = static_cast<std::size_t>(end - buffer_.data());
    if (!line_end) return kNotFound;
    if (!in_quotes_) return scanned_;
    ++scanned_;
  }
  return kNotFound;
}

bool RecordSplitter::Next(std::string_view& record) {
  // Seldom enough that moving the rest costs little for each record.
  if (begin_ > kBlock && begin_ > buffer_.size() / 2) {
    buffer_.erase(0, begin_);
    begin_ = 0;
  }
  if (!HasMore()) return false;
  ++records_;
  scanned_ = begin_;
  in_quotes_ = false;
  std::size_t end = FindEnd();
  while (end == kNotFound && ReadMore()) {
    if (buffer_.size() - begin_ > kLongestRecord + kBlock) break;
    end = FindEnd();
  }
  if ((end == kNotFound ? buffer_.size() : end) - begin_ > kLongestRecord * 4)
    RaiseFault(ToUtf8(path_) + ": registro " + std::to_string(records_), "es demasiado largo");
  if (end == kNotFound && !at_end_)
    RaiseFault(ToUtf8(path_) + ": registro " + std::to_string(records_),
               in_quotes_ ? "la comilla no se cierra" : "es demasiado largo");
  const std::size_t record_begin = begin_;
  const std::size_t record_end = end == kNotFound ? buffer_.size() : end;
  begin_ = end == kNotFound || layout_.line_end == LineEnd::None ? record_end : record_end + 1;
  is_last_ = !HasMore();
  record = std::string_view(buffer_).substr(record_begin, record_end - record_begin);
  if (layout_.line_end != LineEnd::None && end != kNotFound && record.ends_with('\r'))
    record.remove_suffix(1);
  return true;
}

const std::vector<Slice>& FieldSplitter::Delimited(std::string_view record) {
  slices_.clear();
  used_ = 0;
  const auto delimiter = static_cast<char>(layout_.delimiter);
  const auto quote = static_cast<char>(layout_.quote);
  std::size_t at = 0;
  for (;;) {
    if (layout_.quote != 0 && at < record.size() && record[at] == quote) {
      at = ReadQuoted(record, at + 1);
      if (at < record.size() && record[at] != delimiter)
        throw Problem{"hay texto detrás de la comilla que cierra"};
    } else {
      const std::size_t end = std::min(record.find(delimiter, at), record.size());
      const std::string_view bytes = record.substr(at, end - at);
      if (layout_.quote != 0 && bytes.find(quote) != std::string_view::npos)
        throw Problem{"hay una comilla dentro de un campo sin comillas"};
      slices_.push_back({bytes, false});
      at = end;
    }
    if (at >= record.size()) return slices_;
    ++at;  // the delimiter
    if (at == record.size()) {
      slices_.push_back({});
      return slices_;
    }
  }
}

// Answers the place behind the closing quote of a field that begins at `at`.
std::size_t FieldSplitter::ReadQuoted(std::string_view record, std::size_t at) {
  const auto quote = static_cast<char>(layout_.quote);
  const std::size_t begin = at;
  std::string* text = nullptr;
  for (;;) {
    const std::size_t end = record.find(quote, at);
    if (end == std::string_view::npos) throw Problem{"la comilla no se cierra"};
    const bool doubled = layout_.doubled && end + 1 < record.size() && record[end + 1] == quote;
    if (doubled && !text) {
      if (used_ == unquoted_.size()) unquoted_.emplace_back();
      text = &unquoted_[used_++];
      text->clear();
    }
    if (text) text->append(record.substr(at, end - at + (doubled ? 1 : 0)));
    if (!doubled) {
      slices_.push_back({text ? std::string_view(*text) : record.substr(begin, end - begin), true});
      return end + 1;
    }
    at = end + 2;
  }
}

const std::vector<Slice>& FieldSplitter::Fixed(std::string_view record, const RecordLayout& kind) {
  slices_.clear();
  const bool has_rest = kind.fields.back().width == 0;
  const std::size_t length = CountCharacters(record, layout_.encoding);
  if (!has_rest && length != layout_.length && layout_.length != 0)
    throw Problem{"el registro tiene " + std::to_string(length) + " caracteres y el diseño dice " +
                  std::to_string(layout_.length)};
  std::size_t position = 0;  // in characters, of what is left
  for (const FieldLayout& field : kind.fields) {
    const auto skip = [&](std::size_t characters) {
      record.remove_prefix(BytesOf(record, characters, layout_.encoding));
    };
    if (field.start - 1 + field.width > length) throw Problem{"el registro es demasiado corto"};
    skip(field.start - 1 - position);
    position = field.start - 1 + field.width;
    std::size_t bytes = BytesOf(record, field.width, layout_.encoding);
    if (field.width == 0) {
      const std::size_t behind = layout_.separator.size();
      bytes = record.size() - std::min(behind, record.size());
    }
    slices_.push_back({record.substr(0, bytes), false});
    record.remove_prefix(bytes);
  }
  return slices_;
}

}  // namespace tovalin::flat
