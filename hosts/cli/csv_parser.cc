#include "hosts/cli/csv_parser.h"

#include <cstring>
#include <utility>

namespace tovalin::tool {

CsvParser::CsvParser(std::string file, char delimiter, std::function<void(CsvRow&)> on_row)
    : file_(std::move(file)), delimiter_(delimiter), on_row_(std::move(on_row)) {}

void CsvParser::Parse(std::string_view block) {
  if (block.empty()) return;
  begin_ = line_start_ = block.data();
  end_ = begin_ + block.size();
  for (const char* at = begin_; at != end_;) {
    switch (state_) {
      case State::FieldStart:
        if (*at != '"') {
          at = ParsePlain(at);
          break;
        }
        Field().clear();
        quote_ = MarkAt(at++);
        state_ = State::Quoted;
        break;
      case State::Plain:
        at = ParsePlain(at);
        break;
      case State::Quoted:
        at = ParseQuoted(at);
        break;
      case State::QuoteClosed:
        at = ParseClosed(at);
        break;
    }
  }
  if (quote_.at) opened_ = quote_.Count();
  quote_.at = nullptr;
  characters_before_ = MarkAt(end_).Count().column - 1;
  after_return_ = end_[-1] == '\r';
}

void CsvParser::Finish() {
  if (state_ == State::Quoted) RaiseAt(file_, opened_, "la comilla que se abre no se cierra");
  if (state_ == State::FieldStart && fields_ == 0) return;
  if (state_ == State::FieldStart) Field().clear();
  ++fields_;
  EndRow();
}

// The field that is being read.
std::string& CsvParser::Field() {
  if (fields_ == row_.size()) row_.emplace_back();
  return row_[fields_];
}

const char* CsvParser::FindMark(const char* at) const {
  while (at != end_ && *at != '"' && !IsSeparator(*at)) ++at;
  return at;
}

const char* CsvParser::ParsePlain(const char* at) {
  const char* const stop = FindMark(at);
  const bool starts = state_ == State::FieldStart;
  if (starts && stop == at && fields_ == 0 && *stop != delimiter_) {
    PassLineEnd(stop);  // an empty line
    return stop + 1;
  }
  if (starts)
    Field().assign(at, stop);
  else
    Field().append(at, stop);
  state_ = State::Plain;
  if (stop == end_) return stop;
  if (*stop == '"')
    RaiseAt(file_, MarkAt(stop).Count(), "comilla dentro de un campo que no empieza con ella");
  return EndField(stop);
}

const char* CsvParser::ParseQuoted(const char* at) {
  const void* const found = std::memchr(at, '"', static_cast<std::size_t>(end_ - at));
  const char* const stop = found ? static_cast<const char*>(found) : end_;
  Field().append(at, stop);
  for (; at != stop; ++at)
    if (*at == '\n' || *at == '\r') PassLineEnd(at);
  if (stop == end_) return stop;
  state_ = State::QuoteClosed;
  return stop + 1;
}

const char* CsvParser::ParseClosed(const char* at) {
  if (IsSeparator(*at)) return EndField(at);
  if (*at == '"') {
    Field().push_back('"');
    state_ = State::Quoted;
    return at + 1;
  }
  // The quote that is wrong is often the one that opened.
  const Place opened = quote_.at ? quote_.Count() : opened_;
  RaiseAt(
      file_, MarkAt(at).Count(),
      "texto detrás de la comilla que cierra el campo de la línea " + std::to_string(opened.line));
}

// A field ends at the separator `at`, and maybe the row.
const char* CsvParser::EndField(const char* at) {
  ++fields_;
  state_ = State::FieldStart;
  if (*at != delimiter_) {
    PassLineEnd(at);
    EndRow();
  }
  return at + 1;
}

void CsvParser::PassLineEnd(const char* at) {
  const bool after_return = at == begin_ ? after_return_ : at[-1] == '\r';
  if (*at == '\r' || !after_return) ++line_;
  line_start_ = at + 1;
  characters_before_ = 0;
}

void CsvParser::EndRow() {
  row_.resize(std::exchange(fields_, 0));
  on_row_(row_);
}

}  // namespace tovalin::tool
