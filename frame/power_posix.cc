#include <cmath>

#include "frame/power.h"

namespace tovalin {

double RaisedTo(double base, double exponent) { return std::pow(base, exponent); }

}  // namespace tovalin
