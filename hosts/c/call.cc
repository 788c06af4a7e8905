#include <algorithm>
#include <array>

#include "frame/object/error_translation.h"
#include "hosts/c/handle_table.h"
#include "hosts/c/values.h"
#include "tovalin/dispatch.h"
#include "tovalin/factory.h"

// Calls of members, by name and by id.

namespace tovalin::c_abi {
namespace {

constexpr std::size_t kMostArguments = 16;  // of a host's object; ours have fewer

// An id is the number of a class, from 1, and of a row in its table of members.
constexpr tov_member MemberId(std::size_t class_index, std::size_t row) {
  return static_cast<tov_member>((class_index + 1) << 16 | row);
}

const MemberInfo& MemberOf(const Object& object, tov_member id) {
  const auto classes = Classes();
  const std::size_t class_index = std::size_t{id >> 16} - 1;  // of 0 it is none either
  const std::size_t row = id & 0xFFFF;
  if (class_index >= classes.size()) Raise(Failure::NoSuchMember);
  const ClassInfo& info = *classes[class_index];
  if (&object.Class() != &info || row >= info.members.size()) Raise(Failure::NoSuchMember);
  return info.members[row];
}

MemberKind KindOf(int kind) {
  if (kind != TOV_METHOD && kind != TOV_GET && kind != TOV_LET && kind != TOV_SET)
    Raise(Failure::InvalidArgument);
  return static_cast<MemberKind>(kind);
}

// The arguments of one call, as the library takes them, and what it changed of them.
class Arguments {
 public:
  // `member` is null for an object of a host, which may change all of them.
  Arguments(tov_value* given, std::size_t count, const MemberInfo* member, GroupLock& group)
      : given_(given), count_(count), member_(member), group_(group) {
    const std::size_t most = member ? member->parameters.size() : kMostArguments;
    if (count > most) Raise(Failure::WrongArgumentCount);
    if (count > 0) Given(given);
    for (std::size_t i = 0; i < count; ++i) {
      values_[i] = Read(given[i], group);
      if (MayChange(i)) former_[i] = values_[i];
    }
  }

  std::span<Variant> Values() { return std::span(values_).first(count_); }

  // All of them, or none.
  void WriteBack() {
    std::array<OwnedValue, kMostArguments> written;
    std::array<bool, kMostArguments> changed{};
    for (std::size_t i = 0; i < count_; ++i) {
      changed[i] = MayChange(i) && !IsSame(values_[i], former_[i]);
      if (changed[i]) written[i].Set(Write(values_[i], given_[i].encoding, group_.group()));
    }
    for (std::size_t i = 0; i < count_; ++i) {
      if (!changed[i]) continue;
      Clear(given_[i]);
      given_[i] = written[i].Take();
    }
  }

 private:
  bool MayChange(std::size_t i) const {
    return !member_ ||
           (member_->parameters[i].by_reference && member_->parameters[i].passing != Passing::In);
  }

  tov_value* given_;
  std::size_t count_;
  const MemberInfo* member_;
  GroupLock& group_;
  std::array<Variant, kMostArguments> values_;
  std::array<Variant, kMostArguments> former_;
};

static_assert(MemberInfo::kMostParameters <= kMostArguments);

// Calls `member`, or what an object of a host has under `name`.
void Call(Object& object, TextView name, MemberKind kind, const MemberInfo* member,
          GroupLock& group, tov_value* given, std::size_t count, tov_value* result) {
  Arguments arguments(given, count, member, group);
  Variant value;
  const std::optional<Error> raised = member ? Invoke(object, *member, arguments.Values(), value)
                                             : object.Invoke(name, kind, arguments.Values(), value);
  OwnedValue written;
  if (result && !raised) written.Set(Write(value, result->encoding, group.group()));
  arguments.WriteBack();
  if (raised) throw *raised;
  if (result) *result = written.Take();
}

}  // namespace
}  // namespace tovalin::c_abi

using namespace tovalin;
using namespace tovalin::c_abi;

int32_t tov_call(tov_handle object, const char* member, int32_t kind, tov_value* arguments,
                 size_t count, tov_value* result, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindObject(object);
    const Text name = ReadName(member);
    const MemberKind member_kind = KindOf(kind);
    GroupLock group(pin->group);
    Object& target = *pin->value.AsObject();
    const MemberInfo* info = target.Class().Find(name, member_kind);
    Call(target, name, member_kind, info, group, arguments, count, result);
  });
}

int32_t tov_call_id(tov_handle object, tov_member id, tov_value* arguments, size_t count,
                    tov_value* result, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindObject(object);
    GroupLock group(pin->group);
    Object& target = *pin->value.AsObject();
    const MemberInfo& info = MemberOf(target, id);
    Call(target, {}, info.kind, &info, group, arguments, count, result);
  });
}

int32_t tov_find_member(const char* class_name, const char* member, int32_t kind, tov_member* id,
                        tov_error* error) {
  return Answer(error, [&] {
    Given(id);
    const Text of_class = ReadName(class_name);
    const Text name = ReadName(member);
    const ClassInfo* const info = FindClass(of_class);
    if (!info) throw ErrorAbout(Failure::CannotCreateObject, of_class);
    const MemberInfo* const found = info->Find(name, KindOf(kind));
    if (!found) throw ErrorAbout(Failure::NoSuchMember, name);
    const auto classes = Classes();
    const auto class_index = std::ranges::find(classes, info) - classes.begin();
    *id = MemberId(static_cast<std::size_t>(class_index),
                   static_cast<std::size_t>(found - info->members.data()));
  });
}
