#pragma once

#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/error.h"

namespace tovalin {

/// An event of an object: raising it calls every attached handler, in the order
/// of attachment, before the raising statement goes on.
///
/// A handler may attach and detach handlers, itself included: one attached while
/// the event is raised is first called the next time, one detached is not called
/// any more. An error thrown by a handler leaves the others uncalled and reaches
/// the raiser. Raising raises 28 where little is left of the stack.
template <class... Arguments>
class Event {
 public:
  using Handler = std::function<void(Arguments...)>;

  /// Answers the number to Detach the handler with.
  int Attach(Handler handler) {
    handlers_.push_back({++last_, std::move(handler)});
    return last_;
  }

  /// Does nothing for a number that is not attached.
  void Detach(int attachment) {
    for (Entry& entry : handlers_) {
      if (entry.attachment != attachment) continue;
      entry.attachment = kDetached;
      has_detached_ = true;
    }
    Sweep();
  }

  bool HasHandlers() const { return !handlers_.empty(); }

  void Raise(Arguments... arguments) {
    CheckStack();
    Raising raising(*this);
    // A deque keeps its entries in place while handlers attach others.
    const std::size_t count = handlers_.size();
    for (std::size_t i = 0; i < count; ++i)
      if (handlers_[i].attachment != kDetached) handlers_[i].handler(arguments...);
  }

 private:
  static constexpr int kDetached = 0;

  struct Entry {
    int attachment;
    Handler handler;
  };

  struct Raising {
    explicit Raising(Event& event) : event(event) { ++event.depth_; }
    ~Raising() {
      --event.depth_;
      event.Sweep();
    }
    Event& event;
  };

  // A detached handler may be running: it is dropped when no raise is under way. It
  // goes last, since what it holds may lead back here, or be the owner of the event.
  void Sweep() {
    if (depth_ > 0 || !has_detached_) return;
    has_detached_ = false;
    std::vector<Handler> gone;
    for (Entry& entry : handlers_)
      if (entry.attachment == kDetached) gone.push_back(std::move(entry.handler));
    std::erase_if(handlers_, [](const Entry& entry) { return entry.attachment == kDetached; });
  }

  std::deque<Entry> handlers_;
  int last_ = 0;
  int depth_ = 0;
  bool has_detached_ = false;
};

}  // namespace tovalin
