#pragma once

#include <exception>
#include <new>
#include <optional>

#include "tovalin/error.h"

namespace tovalin {

/// Runs a piece of work and turns whatever it throws into error information.
template <class Work>
std::optional<Error> Guarded(Work work) {
  try {
    work();
    return std::nullopt;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return PlatformError(Failure::OutOfMemory);
  } catch (const std::exception& exception) {
    return Error{kObjectError, u"Tovalin", FromUtf8(exception.what())};
  }
}

}  // namespace tovalin
