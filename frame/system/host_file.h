#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

#include "tovalin/text.h"

namespace tovalin {

/// A path as the system's own calls take it.
using NativePath = std::filesystem::path::string_type;

/// The system's form of a host's path, whose directories are separated by "\".
/// Where the system separates them by "/", each "\" is read as one; a drive
/// prefix ("C:") is kept there as part of the name. Raises 52 for a path with the
/// character of code 0, which would name another file.
NativePath ToNativePath(TextView path);

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

enum class FileUse { Read, Write };  // Write creates or empties the file

/// Opens a file for bytes, closed to child processes and without a buffer of its
/// own. Empty, with the cause in errno, when it cannot be opened.
File OpenFile(TextView path, FileUse use);

/// std::fopen for any path of the system, closed to child processes.
std::FILE* OpenStream(const std::filesystem::path& path, const char* mode);

/// Sends what was flushed to the disk itself. False, with the cause in errno, when the
/// disk does not take it; a file that cannot be sent, such as a pipe, counts as sent.
bool SyncToDisk(std::FILE* file);

}  // namespace tovalin
