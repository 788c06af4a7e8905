#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "tovalin/api.h"

namespace tovalin {

/// The count that a shared thing carries for its Refs. Copying a thing does not
/// copy its count: the copy has no Refs yet.
class ReferenceCount {
 public:
  ReferenceCount() = default;
  ReferenceCount(const ReferenceCount&) {}
  ReferenceCount& operator=(const ReferenceCount&) { return *this; }

  void Increment() const { count_.fetch_add(1, std::memory_order_relaxed); }
  /// Whether this was the last Ref.
  bool Decrement() const { return count_.fetch_sub(1, std::memory_order_acq_rel) == 1; }
  std::uint32_t Value() const { return count_.load(std::memory_order_acquire); }

 private:
  mutable std::atomic<std::uint32_t> count_{0};
};

/// A shared owner of a T that has a member `references` (a ReferenceCount).
/// One word wide; empty when default-constructed. The T lives until its last
/// Ref is gone. The count may be touched from several threads, the T may not.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  Ref(const Ref& other) : target_(other.target_) { Retain(); }
  Ref(Ref&& other) noexcept : target_(std::exchange(other.target_, nullptr)) {}
  template <class U>
  requires std::convertible_to<U*, T*> Ref(Ref<U> other)
  noexcept : target_(std::exchange(other.target_, nullptr)) {}
  ~Ref() { Drop(); }

  Ref& operator=(Ref other) noexcept {
    std::swap(target_, other.target_);
    return *this;
  }

  T* get() const { return target_; }
  T& operator*() const& { return *target_; }
  /// The thing might be gone at the end of the expression.
  T& operator*() && = delete;
  T* operator->() const { return target_; }
  explicit operator bool() const { return target_ != nullptr; }
  friend bool operator==(const Ref& left, const Ref& right) {
    return left.target_ == right.target_;
  }

  /// The same thing seen as a U, or an empty Ref when it is none.
  template <class U>
  Ref<U> As() const {
    return Ref<U>::Share(dynamic_cast<U*>(target_));
  }

  /// Takes over a thing that nobody else owns.
  static Ref Adopt(std::unique_ptr<T> thing) { return Share(thing.release()); }

  /// One more Ref on a thing that is already held by Refs (or an empty one).
  static Ref Share(T* thing) {
    Ref ref;
    ref.target_ = thing;
    ref.Retain();
    return ref;
  }

 private:
  template <class U>
  friend class Ref;

  void Retain() const {
    if (target_) target_->references.Increment();
  }
  void Drop() {
    if (target_ && target_->references.Decrement()) std::default_delete<T>()(target_);
  }

  T* target_ = nullptr;
};

/// One more Ref on a thing while code runs that may drop the host's last one; empty for
/// a thing that no Ref holds.
template <class T>
Ref<T> Hold(T& thing) {
  return thing.references.Value() > 0 ? Ref<T>::Share(&thing) : nullptr;
}

/// Makes a T and the first Ref on it.
template <class T, class... Arguments>
Ref<T> Make(Arguments&&... arguments) {
  return Ref<T>::Adopt(std::make_unique<T>(std::forward<Arguments>(arguments)...));
}

}  // namespace tovalin
