#include "tovalin/lib_monto.h"

#include "formatting/words.h"
#include "frame/guarded.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

constexpr MemberInfo kMembers[] = {
    Method<&LibMonto::MontoEscrito>(1, u"MontoEscrito", {{u"pdblValor"}},
                                    u"Devuelve el monto escrito para un valor"),
};

constexpr ClassInfo kClass{LibMonto::kClassName, kMembers};

}  // namespace

const ClassInfo& LibMonto::Class() const { return kClass; }

Text LibMonto::MontoEscrito(double pdblValor) const {
  return RaisingErrors([&] { return tovalin::MontoEscrito(pdblValor); });
}

}  // namespace tovalin
