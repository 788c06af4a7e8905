#include "export/output_file.h"

#include <cerrno>

#include "tovalin/error.h"

namespace tovalin {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

}  // namespace

OutputFile::OutputFile(TextView path) : file_(OpenFile(path, FileUse::Write)) {
  if (!file_) Raise(Failure::PathAccess);
}

OutputFile::~OutputFile() {
  if (file_) Flush();
}

void OutputFile::Write(std::string_view bytes) {
  buffer_ += bytes;
  if (buffer_.size() >= kBufferSize && !Flush()) Raise(Failure::DiskFull);
}

void OutputFile::Close() {
  const bool flushed = Flush();
  const bool closed = std::fclose(file_.release()) == 0;
  if (!flushed || !closed) Raise(Failure::DiskFull);
}

// The buffer is given up also when it could not be written: a second try could only
// write a part of it twice.
bool OutputFile::Flush() {
  std::string_view rest = buffer_;
  bool good = true;
  while (good && !rest.empty()) {
    errno = 0;
    rest.remove_prefix(std::fwrite(rest.data(), 1, rest.size(), file_.get()));
    good = rest.empty() || errno == EINTR;
    if (!rest.empty()) std::clearerr(file_.get());
  }
  buffer_.clear();
  return good;
}

}  // namespace tovalin
