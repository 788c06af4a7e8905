#include "formatting/padding.h"

#include "tovalin/error.h"

namespace tovalin {
namespace {

bool StandsAt(TextView text, std::size_t position, TextView fill) {
  return position <= text.size() && EqualFolded(text.substr(position, fill.size()), fill);
}

TextView WithoutLeft(TextView text, TextView fill) {
  const std::size_t original_length = text.size();
  // Deliberately `i` is not put back to the start of the shortened text: stored
  // codes were unpadded so, and a full strip would no longer match them.
  for (std::size_t i = 0; i < original_length && StandsAt(text, i, fill); i += fill.size())
    text.remove_prefix(i + fill.size());
  return text;
}

TextView WithoutRight(TextView text, TextView fill) {
  // Deliberately the last character alone is compared first, which a longer fill
  // never equals.
  if (fill.size() != 1) return text;
  while (!text.empty() && StandsAt(text, text.size() - 1, fill)) text.remove_suffix(1);
  return text;
}

}  // namespace

Text AjustarTexto(TextView sTexto, std::int16_t nLongitud, std::int32_t nLado) {
  if (nLongitud < 0) Raise(Failure::InvalidArgument);
  const TextView text = Trim(sTexto);
  const std::size_t length = static_cast<std::size_t>(nLongitud);
  if (text.size() >= length) return Text(text.substr(0, length));
  Text padded(length, u' ');
  text.copy(padded.data() + (nLado == kRightSide ? length - text.size() : 0), text.size());
  return padded;
}

Text DesajustarTexto(TextView sTexto, TextView sRelleno, std::int32_t nLado) {
  const TextView text = Trim(sTexto);
  if (sRelleno.empty()) return Text(text);
  return Text(nLado == kRightSide ? WithoutRight(text, sRelleno) : WithoutLeft(text, sRelleno));
}

}  // namespace tovalin
