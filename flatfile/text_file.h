#pragma once

#include <string>

#include "frame/system/host_file.h"
#include "tovalin/error.h"
#include "tovalin/text.h"

namespace tovalin::flat {

/// Opens a file to be read. Raises 53, 70 and 75, with the path.
File OpenToRead(const Text& path);

/// The bytes of a layout file. Raises 53, 70 and 75, and kObjectError for one that is too
/// large to be a layout.
std::string ReadWholeFile(const Text& path);

/// The path of a file to be written. Raises 52 for the empty text, which names none.
NativePath PathToWrite(const Text& path);

/// Runs a reading and puts the file's name before the description of what it raises.
template <class Work>
auto InFile(const Text& path, Work work) {
  try {
    return work();
  } catch (Error& error) {
    if (error.number == kObjectError) error.description = path + u": " + error.description;
    throw;
  }
}

}  // namespace tovalin::flat
