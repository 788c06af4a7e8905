#include "frame/system/replaced_file.h"

#include <cerrno>
#include <random>
#include <string>
#include <utility>

#include "frame/object/error_translation.h"
#include "frame/system/host_file.h"
#include "frame/system/write_failure.h"

namespace tovalin {
namespace {

namespace fs = std::filesystem;

// Nobody else's name in the directory of `path`, and none that somebody can foresee.
fs::path TemporaryName(const fs::path& path) {
  constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz";
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, sizeof kLetters - 2);
  // Put together as a text: a path that runs out of memory while it changes breaks.
  fs::path::string_type name = path.native();
  name.resize(name.size() - path.filename().native().size());
  for (const char c : std::string_view("tovalin-")) name.push_back(c);
  for (int i = 0; i < 12; ++i) name.push_back(kLetters[letter(random)]);
  for (const char c : std::string_view(".tmp")) name.push_back(c);
  return name;
}

}  // namespace

ReplacedFile::ReplacedFile(fs::path path) : path_(std::move(path)) {
  if (path_.empty())
    file_ = stdout;
  else
    Open();
}

void ReplacedFile::Open() {
  std::error_code ignored;
  const fs::path real = fs::canonical(path_, ignored);  // empty when nothing is there
  target_ = real.empty() ? path_ : real;
  const fs::file_status status = fs::status(target_, ignored);
  const bool exists = fs::is_regular_file(status);
  // A file that may not be written may not be replaced either.
  if (exists && !File(OpenStream(target_, "r+b"))) RaiseUnwritable(errno);
  if (exists || !fs::exists(fs::symlink_status(target_, ignored)))
    temporary_ = TemporaryName(target_);
  file_ = OpenStream(temporary_.empty() ? target_ : temporary_, "wb");
  if (!file_) RaiseUnwritable(errno);
  if (exists) fs::permissions(temporary_, status.permissions(), ignored);
}

ReplacedFile::~ReplacedFile() {
  if (file_ && file_ != stdout) std::fclose(file_);
  if (temporary_.empty()) return;
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

void ReplacedFile::Write(std::string_view bytes) {
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) RaiseUnwritable(errno);
}

void ReplacedFile::WriteOver(std::int64_t offset, std::string_view bytes) {
  if (temporary_.empty()) RaiseUnwritable(ESPIPE);
  if (!std::in_range<long>(offset)) RaiseUnwritable(EFBIG);
  errno = 0;
  if (std::fseek(file_, static_cast<long>(offset), SEEK_SET) != 0) RaiseUnwritable(errno);
  Write(bytes);
  if (std::fseek(file_, 0, SEEK_END) != 0) RaiseUnwritable(errno);
}

void ReplacedFile::Commit() {
  errno = 0;
  if (std::fflush(file_) != 0) RaiseUnwritable(errno);
  // Before the name: after a power failure it must not lead to half a file.
  if (!temporary_.empty() && !SyncToDisk(file_)) RaiseUnwritable(errno);
  if (file_ != stdout && std::fclose(std::exchange(file_, nullptr)) != 0) RaiseUnwritable(errno);
  if (temporary_.empty()) return;
  std::error_code failed;
  fs::rename(temporary_, target_, failed);
  if (failed) RaiseUnwritable(failed.default_error_condition().value());
  temporary_.clear();
}

void ReplacedFile::RaiseUnwritable(int cause) const {
  const Failure failure = WriteFailure(cause, target_);
  if (path_.empty() && failure == Failure::DiskFull) Raise(failure);
  const std::u8string name = path_.u8string();
  throw ErrorAbout(
      failure, name.empty() ? Text(u"salida estándar")
                            : FromUtf8({reinterpret_cast<const char*>(name.data()), name.size()}));
}

}  // namespace tovalin
