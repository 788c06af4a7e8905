#pragma once

#include <filesystem>
#include <string>

#include "tovalin/text.h"

namespace tovalin {

/// A name that any file system takes, another one for every application name.
/// Letters, digits and what else is harmless stand as they are; the characters
/// that some system refuses, "%", and a dot or blank at either end become "%" and
/// their two-digit hexadecimal code. Half a surrogate pair becomes "%u" and four
/// digits, the first letter of a device name of Windows (CON, NUL, COM1...) its
/// code, and the empty name "%".
std::u8string FileNameOf(TextView application);

/// The application's settings file. Raises 76 when the environment names no
/// configuration directory.
std::filesystem::path SettingsPath(TextView application);

}  // namespace tovalin
