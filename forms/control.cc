#include "tovalin/control.h"

#include "frame/object/error_translation.h"

namespace tovalin {
namespace {

constexpr ClassInfo kClass{.name = Control::kClassName, .members = {}};

class BoundControl : public Control {
 public:
  BoundControl(ControlKind kind, std::vector<ControlMember> members)
      : kind_(kind), members_(std::move(members)) {}

  ControlKind Kind() const override { return kind_; }

  std::optional<Error> Invoke(TextView name, MemberKind kind, std::span<Variant> arguments,
                              Variant& result) override {
    const BoundCall* bound = Find(name, kind);
    if (!bound) return PlatformError(Failure::NoSuchMember);
    if (arguments.size() < bound->parameter_count)
      return PlatformError(Failure::ArgumentNotOptional);
    if (arguments.size() > bound->parameter_count)
      return PlatformError(Failure::WrongArgumentCount);
    return Call(*bound, arguments, result);
  }

 private:
  const BoundCall* Find(TextView name, MemberKind kind) const {
    const bool writes = kind == MemberKind::Let || kind == MemberKind::Set;
    for (const ControlMember& member : members_) {
      if (!EqualFolded(member.name, name)) continue;
      const BoundCall& bound = writes ? member.write : member.read;
      return bound.call ? &bound : nullptr;
    }
    return nullptr;
  }

  std::optional<Error> Call(const BoundCall& bound, std::span<Variant> arguments, Variant& result) {
    // A widget's function may drop the host's last Ref on this control.
    const Ref<Object> alive = Hold<Object>(*this);
    return CatchError([&] { result = bound.call(arguments); });
  }

  const ControlKind kind_;
  const std::vector<ControlMember> members_;
};

}  // namespace

const ClassInfo& Control::Class() const { return kClass; }

Ref<Control> MakeControl(ControlKind kind, std::vector<ControlMember> members) {
  return Make<BoundControl>(kind, std::move(members));
}

}  // namespace tovalin
