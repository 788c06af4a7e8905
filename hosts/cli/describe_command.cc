#include <iostream>

#include "hosts/cli/command_line.h"
#include "hosts/cli/description_text.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/input.h"
#include "tovalin/factory.h"

// tovalin describe [CLASS | ENUMERATION] [--json | --markdown | --ids]

namespace tovalin::tool {
namespace {

std::string DescribeOne(const std::string& name, bool as_json) {
  const Text wanted = TextOfArgument(name);
  if (const ClassInfo* info = FindClass(wanted))
    return as_json ? DescribeJson(*info) + '\n' : ClassText(*info);
  const EnumInfo* enumeration = as_json ? nullptr : FindEnumeration(wanted);
  if (!enumeration) RaiseAbout(Failure::CannotCreateObject, name);
  return EnumerationText(*enumeration);
}

std::string Describe(const DescribeOptions& options) {
  if (options.ids) return ListIds();
  if (options.markdown) return ReferencePage();
  if (!options.name.empty()) return DescribeOne(options.name, options.json);
  return options.json ? DescribeJson(Classes()) + '\n' : ClassesText();
}

}  // namespace

int RunDescribe(const DescribeOptions& options) {
  std::cout << Describe(options);
  return kDone;
}

}  // namespace tovalin::tool
