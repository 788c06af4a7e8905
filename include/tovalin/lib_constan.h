#pragma once

#include <cstdint>

#include "tovalin/api.h"
#include "tovalin/object.h"

namespace tovalin {

/// The kinds of message boxes.
enum icoMsgBox : std::int32_t {
  icoInformacion = 1,
  icoExclamacion = 2,
  icoError = 3,
  icoPare = 4,
  icoPregunta = 5,
};

/// The directions of a file transfer.
enum caTransferType : std::int32_t {
  caLocalRemote = 0,
  caRemoteLocal = 1,
  caLocalLocal = 2,
};

/// A class without members: it exists so that hosts can reference the
/// enumerations.
class TOVALIN_API LibConstan : public Object {
 public:
  static constexpr TextView kClassName = u"LibConstan";

  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;
};

}  // namespace tovalin
