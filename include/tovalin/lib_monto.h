#pragma once

#include "tovalin/api.h"
#include "tovalin/object.h"

namespace tovalin {

/// Amounts in Spanish words, as printed on cheques and payment documents.
class TOVALIN_API LibMonto : public Object {
 public:
  static constexpr TextView kClassName = u"LibMonto";

  const ClassInfo& Class() const override;

  /// The whole part of `pdblValor` in words, on the long scale (a "billón" is
  /// 10^12). The value is first rounded to five decimals. 0 gives "Cero"; every
  /// other text is in lower case, most of them end in a blank, and one of a
  /// magnitude below 1 is empty (or "menos "). Meant for magnitudes below 10^18:
  /// beyond, the words do not say the amount. Infinite values and those that are
  /// no number give the empty text. Raises nothing.
  /// Example: 2500000 gives "dos millones quinientos mil ".
  Text MontoEscrito(double pdblValor) const;
};

}  // namespace tovalin
