#include "tovalin/lib_constan.h"

#include "tovalin/dispatch.h"

namespace tovalin {

const ClassInfo& LibConstan::Class() const {
  static constexpr ClassInfo kClass{kClassName, {}};
  return kClass;
}

}  // namespace tovalin
