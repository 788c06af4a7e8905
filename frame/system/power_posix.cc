#include <cmath>

#include "frame/system/power.h"

namespace tovalin {

double RaisedTo(double base, double exponent) { return std::pow(base, exponent); }

}  // namespace tovalin
