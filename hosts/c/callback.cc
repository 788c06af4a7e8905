#include "hosts/c/callback.h"

#include <array>
#include <cstring>

#include "frame/object/error_translation.h"

namespace tovalin::c_abi {
namespace {

// The arguments of a call as the handler sees them. They are lent to it, without
// TOV_OWNED; what it puts there with that flag is taken over.
class LentArguments {
 public:
  LentArguments(std::span<const Variant> arguments, int encoding, const Ref<Group>& group) {
    for (const Variant& argument : arguments) {
      own_[count_].Set(Write(argument, encoding, group));
      shown_[count_] = lent_[count_] = own_[count_].Get();
      shown_[count_].flags = lent_[count_].flags = 0;
      ++count_;
    }
  }
  ~LentArguments() {
    for (std::size_t i = 0; i < count_; ++i) Clear(shown_[i]);
  }
  LentArguments(const LentArguments&) = delete;
  LentArguments& operator=(const LentArguments&) = delete;

  tov_value* Shown() { return shown_.data(); }

  void CarryBack(std::span<Variant> arguments, GroupLock& group) const {
    for (std::size_t i = 0; i < count_; ++i)
      if (arguments[i].IsByReference() && std::memcmp(&shown_[i], &lent_[i], sizeof lent_[i]) != 0)
        arguments[i].Assign(Read(shown_[i], group));
  }

 private:
  std::array<OwnedValue, Callback::kMostArguments> own_;
  std::array<tov_value, Callback::kMostArguments> lent_{};
  std::array<tov_value, Callback::kMostArguments> shown_{};
  std::size_t count_ = 0;
};

}  // namespace

Callback::Callback(const tov_handler* handler) : handler_(Given(handler)) {
  if (!handler_.function) Raise(Failure::InvalidArgument);
}

Callback::~Callback() {
  if (!kept_ || !handler_.release) return;
  try {
    handler_.release(handler_.context);
  } catch (...) {
    // A release has nobody to tell.
  }
}

// A handler in C++ may throw, although it should not.
void Callback::Run(tov_invocation& invocation) const {
  try {
    handler_.function(handler_.context, &invocation);
  } catch (const Error&) {
    throw;
  } catch (const std::exception& exception) {
    throw ErrorOf(exception);
  } catch (...) {
    RaiseOwn(u"Tovalin", u"El manejador terminó con una excepción");
  }
}

void Callback::Call(const char* name, int kind, std::span<Variant> arguments, Variant& result,
                    const Ref<Group>& group) const {
  CheckStack();
  if (arguments.size() > kMostArguments) Raise(Failure::WrongArgumentCount);
  GroupLock lock(group);
  LentArguments lent(arguments, handler_.encoding, group);

  tov_invocation invocation{};
  invocation.name = name;
  invocation.kind = kind;
  invocation.count = static_cast<std::uint32_t>(arguments.size());
  invocation.arguments = lent.Shown();
  invocation.error.encoding = handler_.encoding;
  struct Clearing {
    ~Clearing() {
      Clear(invocation.result);
      Clear(invocation.error);
    }
    tov_invocation& invocation;
  } clearing{invocation};

  Run(invocation);
  if (invocation.error.number != 0) throw ReadError(invocation.error);
  Variant value = Read(invocation.result, lock);
  lent.CarryBack(arguments, lock);
  result = std::move(value);
}

std::optional<Error> HostObject::Invoke(TextView name, MemberKind kind,
                                        std::span<Variant> arguments, Variant& result) {
  const Ref<Object> alive = Hold<Object>(*this);
  return CatchError([&] {
    callback_->Call(ToUtf8(name).c_str(), static_cast<int>(kind), arguments, result, group_);
  });
}

}  // namespace tovalin::c_abi
