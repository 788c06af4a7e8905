#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "frame/settings/live_file.h"
#include "tovalin/text.h"

namespace tovalin {

// The trace of the last evaluation, of whatever process, as every reader of the settings
// sees it: four entries of one section of an application. They lie in a LiveFile, and in the
// settings only where they are too long for that.

inline constexpr TextView kTraceApplication = u"Evaluador";
inline constexpr TextView kTraceSection = u"Posfijo";
enum TraceKey : std::size_t { kTraceExpression, kTracePostfix, kTraceResult, kTraceLeft };
inline constexpr std::array<TextView, kLiveTexts> kTraceKeys = {u"Expresion", u"Posfijo",
                                                                u"Resultado", u"ElementosPila"};

/// Which entry of the trace a setting is, if any.
std::optional<std::size_t> FindTraceKey(TextView application, TextView section, TextView key);

using TraceTexts = std::array<std::optional<Text>, kLiveTexts>;

/// The entries, all of one moment; nothing for those that were never written. Raises 70, 75
/// or 76.
TraceTexts ReadTrace();

class ProcessFile;

/// Writes traces into the file of this process, from one thread.
class LiveTrace {
 public:
  /// Opens nothing yet. Where the file is, is looked up at most every so many milliseconds,
  /// after which it comes back when others have deleted it.
  explicit LiveTrace(std::int64_t look_every = 1000);

  /// Whether the last Put's entries are those of the trace and need no look at the file. Asks
  /// the clock, which takes longer than all the rest, every fourth time.
  bool Holds() {
    return file_ && file_->State() == state_ && file_->IsLatest() &&
           (++held_ % 4 != 0 || CoarseMilliseconds() < next_look_);
  }

  /// Makes these the entries of the trace; those without a view stay as they are. The
  /// first `same` are those of the last Put. False when the trace cannot be written.
  bool Put(const LiveChanges& changes, std::size_t same) noexcept;

  /// How often the file was looked up.
  std::size_t Looks() const { return looks_; }

 private:
  void Look(std::int64_t now) noexcept;
  bool Write(const LiveChanges& changes, std::size_t same);
  bool WriteLong(LiveChanges& changes, std::size_t same, std::uint64_t too_long,
                 std::uint64_t saved);
  bool WriteFile(const LiveChanges& changes, std::size_t same);
  void RemoveLong() noexcept;

  static constexpr std::uint64_t kNoState = 1;

  std::shared_ptr<ProcessFile> process_;
  std::shared_ptr<LiveFile> file_;
  std::uint64_t state_ = kNoState;  // of the file after the last Put
  std::size_t same_in_both_ = 0;    // of its texts, how many stand in both buffers of the file
  std::uint64_t long_ = 0;          // a bit for each of its texts that went to the settings
  std::array<Text, kLiveTexts> fingerprints_;  // of those
  bool may_save_ = true;                       // saving them has not failed since the last look
  std::int64_t look_every_;
  std::int64_t next_look_;
  std::size_t looks_ = 0;
  unsigned held_ = 0;  // how often Holds could answer yes
};

}  // namespace tovalin
