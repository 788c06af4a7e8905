#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tovalin/describe.h"

namespace tovalin::tool {

/// A method, property or event as the language of automation hosts declares it:
/// "Function Item(Index As Variant) As Variant", "Property Count As Long (Get)".
std::string Signature(const ClassInfo& info, const MemberInfo& member);
std::string Signature(const EventInfo& event);

/// "Method", "Get", "Let" or "Set".
std::string_view KindName(MemberKind kind);

/// The rows that people are shown as one member: a method, or a property with those
/// that read and write it. Hidden members are left out.
struct ShownMember {
  std::vector<const MemberInfo*> rows;
  const MemberInfo& First() const { return *rows.front(); }
};
std::vector<ShownMember> ShownMembers(const ClassInfo& info);

/// The members and events of a class as a line each, with what they do below.
std::string ListMembers(const ClassInfo& info);

}  // namespace tovalin::tool
