#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "hosts/c/values.h"
#include "tovalin/control.h"
#include "tovalin/tovalin_c.h"

namespace tovalin::c_abi {

/// A handler of the host: called with values of the library, and released at the end.
class Callback {
 public:
  /// Raises 5 for a handler that is none. The handler is released only after Keep.
  explicit Callback(const tov_handler* handler);
  Callback(const Callback&) = delete;
  Callback& operator=(const Callback&) = delete;
  ~Callback();

  void Keep() { kept_ = true; }

  /// Calls it, with the arguments that are by reference open to change. Raises the error
  /// that it leaves; then nothing is changed. Raises 450 for more than kMostArguments.
  void Call(const char* name, int kind, std::span<Variant> arguments, Variant& result,
            const Ref<Group>& group) const;

  static constexpr std::size_t kMostArguments = 16;

 private:
  void Run(tov_invocation& invocation) const;

  tov_handler handler_;
  bool kept_ = false;
};

/// An object whose members the host answers.
class HostObject : public Control {
 public:
  HostObject(std::shared_ptr<const Callback> callback, ControlKind kind, Ref<Group> group)
      : callback_(std::move(callback)), kind_(kind), group_(std::move(group)) {}

  ControlKind Kind() const override { return kind_; }
  std::optional<Error> Invoke(TextView name, MemberKind kind, std::span<Variant> arguments,
                              Variant& result) override;

 private:
  std::shared_ptr<const Callback> callback_;
  ControlKind kind_;
  Ref<Group> group_;
};

}  // namespace tovalin::c_abi
