#include <windows.h>

#include <cmath>

#include "frame/system/power.h"

namespace tovalin {
namespace {

using Function = double (*)(double, double);

// MinGW links a function of its own, which multiplies step by step: 10 ^ -3 has a wrong
// digit there, 7 ^ 300 three. The system's has not.
Function SystemPower() {
  const HMODULE library = LoadLibraryW(L"msvcrt.dll");
  const FARPROC function = library ? GetProcAddress(library, "pow") : nullptr;
  if (!function) return [](double base, double exponent) { return std::pow(base, exponent); };
  return reinterpret_cast<Function>(reinterpret_cast<void*>(function));
}

}  // namespace

double RaisedTo(double base, double exponent) {
  static const Function power = SystemPower();
  return power(base, exponent);
}

}  // namespace tovalin
