#pragma once

#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

#include "tovalin/error.h"

namespace tovalin {

/// The error 7 of memory that ran out, without a full text if there is none for it.
Error MemoryError() noexcept;

/// A platform error that names what it is about; that of memory if there is none for it.
Error ErrorAbout(Failure failure, TextView name) noexcept;

/// What an exception that is no Error is told as.
Error ErrorOf(const std::exception& exception) noexcept;

/// Runs the work of a public member. Memory that runs out, and a text or a list longer
/// than there can be, is raised as error 7; what code of the host throws passes.
template <class Work>
decltype(auto) RaisingErrors(Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    throw MemoryError();
  } catch (const std::length_error&) {
    throw MemoryError();
  }
}

/// Runs a piece of work and turns whatever it throws into error information.
template <class Work>
std::optional<Error> CatchError(Work work) {
  try {
    work();
    return std::nullopt;
  } catch (Error& error) {
    return std::move(error);
  } catch (const std::exception& exception) {
    return ErrorOf(exception);
  }
}

}  // namespace tovalin
