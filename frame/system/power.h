#pragma once

namespace tovalin {

/// std::pow, right to the last digit or next to it on every system.
double RaisedTo(double base, double exponent);

}  // namespace tovalin
