#pragma once

#include <string>

#include "tovalin/error.h"

namespace tovalin::flat {

/// What is wrong with one value, thrown to where its row and field are known.
struct Problem {
  std::string reason;  // in UTF-8
};

/// Raises kObjectError: "PLACE: REASON".
[[noreturn]] inline void RaiseFault(const std::string& place, const std::string& reason) {
  RaiseOwn(u"ArchivoPlano", FromUtf8(place + ": " + reason));
}

inline std::string Quoted(TextView text) { return "«" + ToUtf8(text) + "»"; }

}  // namespace tovalin::flat
