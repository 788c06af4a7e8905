#include "forms/member_access.h"

#include <vector>

namespace tovalin {
namespace {

constexpr auto kNoSuchMember = static_cast<std::int32_t>(Failure::NoSuchMember);
constexpr auto kWrongArgumentCount = static_cast<std::int32_t>(Failure::WrongArgumentCount);

std::optional<Error> TryRead(Object& object, TextView name, std::initializer_list<Variant> indices,
                             Variant& result) {
  std::vector<Variant> arguments(indices);
  std::optional<Error> error = object.Invoke(name, MemberKind::Get, arguments, result);
  if (!error || error->number != kNoSuchMember) return error;
  arguments.assign(indices);
  return object.Invoke(name, MemberKind::Method, arguments, result);
}

void Write(Object& object, TextView name, std::vector<Variant> arguments) {
  Variant nothing;
  const std::optional<Error> error = object.Invoke(name, MemberKind::Let, arguments, nothing);
  if (error) throw *error;
}

}  // namespace

ControlKind KindOf(const Object& object) {
  const auto* control = dynamic_cast<const Control*>(&object);
  return control ? control->Kind() : ControlKind::Other;
}

Variant ReadMember(Object& object, TextView name, std::initializer_list<Variant> indices) {
  Variant result;
  const std::optional<Error> error = TryRead(object, name, indices, result);
  if (error) throw *error;
  return result.Value();
}

Ref<Object> ReadElement(Object& object, TextView name, const Variant& index) {
  Variant element;
  const std::optional<Error> error = TryRead(object, name, {index}, element);
  if (!error) return RequireObject(element);
  if (error->number != kWrongArgumentCount) throw *error;
  const Ref<Object> collection = RequireObject(ReadMember(object, name));
  return RequireObject(ReadMember(*collection, u"Item", {index}));
}

void WriteMember(Object& object, TextView name, const Variant& value) {
  Write(object, name, {value});
}

void WriteMember(Object& object, TextView name, const Variant& index, const Variant& value) {
  Write(object, name, {index, value});
}

void CallMember(Object& object, TextView name) {
  Variant nothing;
  const std::optional<Error> error = object.Invoke(name, MemberKind::Method, {}, nothing);
  if (error) throw *error;
}

Ref<Object> RequireObject(const Variant& value) {
  if (!value.Is(Subtype::Object)) Raise(Failure::ObjectRequired);
  Ref<Object> object = value.AsObject();
  if (!object) Raise(Failure::ObjectNotSet);
  return object;
}

}  // namespace tovalin
