#include <algorithm>
#include <iostream>
#include <optional>

#include "hosts/cli/command_line.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/input.h"
#include "hosts/cli/signature.h"
#include "tovalin/convert.h"
#include "tovalin/factory.h"

// tovalin call CLASS [PROPERTY=VALUE]... MEMBER [ARG]...

namespace tovalin::tool {
namespace {

using Arguments = std::span<const std::string>;

void ThrowIfFailed(std::optional<Error> error) {
  if (error) throw *error;
}

// Whether an argument assigns a property of the class; it is assigned then.
bool AssignProperty(Object& object, const std::string& argument) {
  if (argument.find('=') == std::string::npos) return false;
  const Assignment assignment = ReadAssignment(argument);
  const MemberInfo* property = object.Class().Find(assignment.name, MemberKind::Let);
  if (!property) return false;
  const ParameterInfo& value = property->parameters.back();
  Variant values[] = {ReadValue(assignment.value, value.type.subtype)};
  Variant result;
  ThrowIfFailed(object.Invoke(assignment.name, MemberKind::Let, values, result));
  return true;
}

const MemberInfo* FindMember(const ClassInfo& info, const Text& name) {
  for (MemberKind kind : {MemberKind::Method, MemberKind::Get, MemberKind::Let, MemberKind::Set})
    if (const MemberInfo* member = info.Find(name, kind)) return member;
  return nullptr;
}

std::vector<Variant> ReadArguments(const MemberInfo& member, Arguments arguments) {
  std::vector<Variant> values;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool declared = i < member.parameters.size();
    const Subtype subtype = declared ? member.parameters[i].type.subtype : Subtype::Variant;
    values.push_back(ReadValue(arguments[i], subtype));
  }
  return values;
}

bool Changed(const Variant& before, const Variant& after) {
  return ShowValue(before) != ShowValue(after);
}

void CallMember(Object& object, const MemberInfo& member, Arguments arguments) {
  std::vector<Variant> values = ReadArguments(member, arguments);
  const std::vector<Variant> before = values;
  Variant result;
  const std::optional<Error> error = Invoke(object, member, values, result);
  if (!error && member.result.subtype != Subtype::Empty) std::cout << ShowValue(result) << '\n';
  // A member that raises keeps what it had set by then.
  for (std::size_t i = 0; i < std::min(values.size(), member.parameters.size()); ++i) {
    const ParameterInfo& parameter = member.parameters[i];
    if (parameter.by_reference && Changed(before[i], values[i]))
      std::cout << ToUtf8(parameter.name) << " = " << ShowValue(values[i]) << '\n';
  }
  ThrowIfFailed(error);
}

int ListClasses() {
  for (const ClassInfo* info : Classes())
    if (info->create) std::cout << ToUtf8(info->name) << '\n';
  return kDone;
}

}  // namespace

int RunCall(const std::vector<std::string>& arguments) {
  if (arguments.empty()) return ListClasses();
  const Text name = TextOfArgument(arguments[0]);
  if (const ClassInfo* info = FindClass(name); info && arguments.size() == 1) {
    std::cout << ListMembers(*info);
    return kDone;
  }
  const Ref<Object> object = CreateObject(name);
  std::size_t next = 1;
  while (next < arguments.size() && AssignProperty(*object, arguments[next])) ++next;
  if (next == arguments.size()) return kDone;
  const MemberInfo* member = FindMember(object->Class(), TextOfArgument(arguments[next]));
  if (!member) RaiseAbout(Failure::NoSuchMember, arguments[next]);
  CallMember(*object, *member, Arguments(arguments).subspan(next + 1));
  return kDone;
}

}  // namespace tovalin::tool
