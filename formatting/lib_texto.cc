#include "tovalin/lib_texto.h"

#include "formatting/phrase_case.h"
#include "formatting/word_extraction.h"
#include "frame/object/guarded.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

constexpr MemberInfo kMembers[] = {
    Method<&LibTexto::ExtraerPalabra>(1, u"ExtraerPalabra", {{u"vData"}, {u"vPart"}}),
    Method<&LibTexto::ExtraerFrase>(2, u"ExtraerFrase", {{u"vData"}, {u"vPart"}}),
    Method<&LibTexto::TipoFrase>(3, u"TipoFrase", {{u"vstrWord"}}),
};

constexpr ClassInfo kClass{LibTexto::kClassName, kMembers};

}  // namespace

const ClassInfo& LibTexto::Class() const { return kClass; }

Text LibTexto::ExtraerPalabra(const Text& vData, std::uint8_t vPart) const {
  return RaisingErrors([&] { return Text(tovalin::ExtraerPalabra(vData, vPart)); });
}

Text LibTexto::ExtraerFrase(const Text& vData, std::uint8_t vPart) const {
  return RaisingErrors([&] { return Text(tovalin::ExtraerFrase(vData, vPart)); });
}

Text LibTexto::TipoFrase(const Text& vstrWord) const {
  return RaisingErrors([&] { return tovalin::TipoFrase(vstrWord); });
}

}  // namespace tovalin
