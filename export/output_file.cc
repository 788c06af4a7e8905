#include "export/output_file.h"

#include <algorithm>
#include <cerrno>

#include "frame/system/write_failure.h"

namespace tovalin {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

}  // namespace

OutputFile::OutputFile(TextView path) : path_(path), file_(OpenFile(path, FileUse::Write)) {
  if (!file_) RaiseUnwritable(errno);
}

void OutputFile::RaiseUnwritable(int cause) const {
  Error error = PlatformError(WriteFailure(cause, ToNativePath(path_)));
  error.description.append(u": ").append(path_);
  throw error;
}

void OutputFile::Write(std::string_view bytes) {
  buffer_ += bytes;
  ends_.push_back(buffer_.size());
  if (buffer_.size() < kBufferSize) return;
  if (const int cause = Flush()) RaiseUnwritable(cause);
}

void OutputFile::Close() {
  int cause = Flush();
  errno = 0;
  if (std::fclose(file_.release()) != 0 && cause == 0) cause = errno;
  if (cause != 0) RaiseUnwritable(cause);
  is_complete_ = true;
}

void OutputFile::Abandon() {
  if (!file_) return;
  Flush();
  file_.reset();
}

// Answers 0, or why the system did not take it. The buffer is emptied even then: a
// second try could only write a part of it twice.
int OutputFile::Flush() {
  std::string_view rest = buffer_;
  int cause = 0;
  while (cause == 0 && !rest.empty()) {
    errno = 0;
    rest.remove_prefix(std::fwrite(rest.data(), 1, rest.size(), file_.get()));
    if (rest.empty()) break;
    if (errno != EINTR) cause = errno != 0 ? errno : EIO;
    std::clearerr(file_.get());
  }
  CountWritten(buffer_.size() - rest.size());
  buffer_.clear();
  ends_.clear();
  return cause;
}

void OutputFile::CountWritten(std::size_t bytes) {
  if (bytes == 0) return;
  const auto behind = std::ranges::upper_bound(ends_, bytes);
  whole_writes_ += behind - ends_.begin();
  has_broken_write_ = behind == ends_.begin() || behind[-1] != bytes;
}

}  // namespace tovalin
