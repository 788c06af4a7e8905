#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "hosts/c/group.h"
#include "tovalin/error.h"
#include "tovalin/tovalin_c.h"
#include "tovalin/variant.h"

namespace tovalin::c_abi {

static_assert(sizeof(tov_value) == 24 && offsetof(tov_value, as) == 8);
static_assert(sizeof(tov_error) == 64);

/// What a host handed in. What comes with an object joins the group. Raises 13 for a
/// type that there is not, 5 for a text that is none, and what Find raises.
Variant Read(const tov_value& value, GroupLock& group);
/// The same for a value without an object: 13 for one.
Text ReadText(const tov_value& value);
/// A name that ends with a 0. Raises 5 for NULL.
Text ReadName(const char* utf8);

/// A value as the host gets it; its text or handle is the host's. Raises 7.
tov_value Write(const Variant& value, int encoding, const Ref<Group>& group);
tov_value WriteText(TextView text, int encoding);

/// Gives back what the value owns, and makes it Empty.
void Clear(tov_value& value) noexcept;
void Clear(tov_error& error) noexcept;

/// A value that is cleared with this, until it is taken.
class OwnedValue {
 public:
  OwnedValue() = default;
  explicit OwnedValue(const tov_value& value) : value_(value) {}
  OwnedValue(const OwnedValue&) = delete;
  OwnedValue& operator=(const OwnedValue&) = delete;
  ~OwnedValue() { Clear(value_); }

  void Set(const tov_value& value) {
    Clear(value_);
    value_ = value;
  }
  const tov_value& Get() const { return value_; }
  tov_value Take() { return std::exchange(value_, tov_value{}); }

 private:
  tov_value value_{};
};

/// Whether two values are of one subtype, and the same to the last bit.
bool IsSame(const Variant& left, const Variant& right);

/// Fills the host's struct, if there is one. Answers the number, which is not 0.
std::int32_t Tell(const Error& raised, tov_error* error) noexcept;
/// What a handler left in its struct.
Error ReadError(const tov_error& error);

/// Raises 5 for a pointer that must not be NULL.
template <class T>
T& Given(T* pointer) {
  if (!pointer) Raise(Failure::InvalidArgument);
  return *pointer;
}

/// Runs the work of an exported function and tells what it raises.
std::int32_t Answer(tov_error* error, void (*work)(void* closure), void* closure) noexcept;

template <class Work>
std::int32_t Answer(tov_error* error, Work work) noexcept {
  return Answer(
      error, [](void* closure) { (*static_cast<Work*>(closure))(); }, &work);
}

}  // namespace tovalin::c_abi
