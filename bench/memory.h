#pragma once

#include <malloc.h>

#include <cstddef>
#include <fstream>
#include <string>

namespace tovalin::bench {

/// What the heap has handed out.
inline double HeapInUse() {
  const auto info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

/// A line of /proc/self/status, in bytes.
inline double StatusBytes(const std::string& label) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;)
    if (double kilobytes = 0; word == label && status >> kilobytes) return kilobytes * 1024;
  return 0;
}

/// The memory of the process, and the most since ResetPeak.
inline double Resident() { return StatusBytes("VmRSS:"); }
inline double PeakResident() { return StatusBytes("VmHWM:"); }
inline void ResetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

}  // namespace tovalin::bench
