#include "tovalin/lib_texto.h"

#include "formatting/phrase_case.h"
#include "formatting/word_extraction.h"
#include "frame/object/error_translation.h"

namespace tovalin {
Text LibTexto::ExtraerPalabra(const Text& vData, std::uint8_t vPart) const {
  return RaisingErrors([&] { return Text(NthWord(vData, vPart)); });
}

Text LibTexto::ExtraerFrase(const Text& vData, std::uint8_t vPart) const {
  return RaisingErrors([&] { return Text(tovalin::ExtraerFrase(vData, vPart)); });
}

Text LibTexto::TipoFrase(const Text& vstrWord) const {
  return RaisingErrors([&] { return tovalin::TipoFrase(vstrWord); });
}

}  // namespace tovalin
