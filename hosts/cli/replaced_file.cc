#include "hosts/cli/replaced_file.h"

#include <cerrno>
#include <filesystem>
#include <random>
#include <utility>

#include "frame/system/write_failure.h"
#include "hosts/cli/input.h"
#include "hosts/cli/system.h"

namespace tovalin::tool {
namespace {

namespace fs = std::filesystem;

// Nobody else's name in the directory of `path`, and none that somebody can foresee.
fs::path TemporaryName(fs::path path) {
  constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz";
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, sizeof kLetters - 2);
  std::string name = "tovalin-";
  for (int i = 0; i < 12; ++i) name.push_back(kLetters[letter(random)]);
  return path.replace_filename(name + ".tmp");
}

}  // namespace

ReplacedFile::ReplacedFile(std::string path) : path_(std::move(path)) {
  if (path_.empty())
    file_ = stdout;
  else
    Open();
}

void ReplacedFile::Open() {
  std::error_code ignored;
  target_ = fs::canonical(PathOf(path_), ignored);
  if (target_.empty()) target_ = PathOf(path_);  // nothing is there
  const fs::file_status status = fs::status(target_, ignored);
  const bool exists = fs::is_regular_file(status);
  if (exists) {
    // A file that may not be written may not be replaced either.
    const InputFile writable(OpenStream(target_, "r+b"));
    if (!writable) RaiseUnwritable(errno);
  }
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

void ReplacedFile::Write(const char* bytes, std::size_t size) {
  errno = 0;
  if (std::fwrite(bytes, 1, size, file_) != size) RaiseUnwritable(errno);
}

void ReplacedFile::Commit() {
  errno = 0;
  if (std::fflush(file_) != 0) RaiseUnwritable(errno);
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
  RaiseAbout(failure, path_.empty() ? "salida estándar" : path_);
}

}  // namespace tovalin::tool
