#pragma once

#include <cstdint>

#include "tovalin/api.h"
#include "tovalin/text.h"

namespace tovalin {

/// A raised error, thrown by value by every member that fails:
/// `catch (const tovalin::Error& error)`.
struct TOVALIN_API Error {
  std::int32_t number = 0;
  Text source;
  Text description;

  friend bool operator==(const Error&, const Error&) = default;
};

/// The number of the errors of the library's own making (hexadecimal 80040000).
inline constexpr std::int32_t kObjectError = -2147221504;

/// The platform's errors, under the numbers that automation hosts know.
enum class Failure : std::int32_t {
  InvalidArgument = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  DivisionByZero = 11,
  TypeMismatch = 13,
  OutOfStack = 28,
  BadFileName = 52,
  FileNotFound = 53,
  DiskFull = 61,
  ReadPastEnd = 62,
  PermissionDenied = 70,
  PathAccess = 75,
  PathNotFound = 76,
  ObjectNotSet = 91,
  ObjectRequired = 424,
  CannotCreateObject = 429,
  NoSuchMember = 438,
  ArgumentNotOptional = 449,
  WrongArgumentCount = 450,
  DuplicateKey = 457,
};

/// The Error of a platform failure: its number, the source "Tovalin" and its
/// Spanish text.
TOVALIN_API Error PlatformError(Failure failure);

/// Throws PlatformError(failure).
[[noreturn]] TOVALIN_API void Raise(Failure failure);

/// Throws PlatformError(Failure::OutOfStack) when little is left of the thread's stack.
/// Whatever calls code of the host checks it first: that code may call back.
TOVALIN_API void CheckStack();

/// Throws an error of the library's own making.
[[noreturn]] TOVALIN_API void RaiseOwn(TextView source, TextView description);

}  // namespace tovalin
