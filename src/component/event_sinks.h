#pragma once

#include <exception>
#include <map>

#include "host/component_entry.h"
#include "host/ivelmora_input_plugin.h"

namespace keplo::component {

/// The sinks subscribed to an object.
template <typename Source, typename Sink>
class Sinks : public Source {
 public:
  virtual ~Sinks() = default;

  std::uint32_t Subscribe(Sink& sink) override {
    sinks_.emplace(++lastCookie_, &sink);
    return lastCookie_;
  }
  void Unsubscribe(std::uint32_t cookie) override { sinks_.erase(cookie); }

  void Clear() { sinks_.clear(); }
  bool IsEmpty() const { return sinks_.empty(); }

  /// Calls every sink in the order of subscription. A sink may unsubscribe any of them.
  /// @throws the first exception of a sink, after all have been called
  template <typename Call>
  void ForEach(Call call) {
    std::exception_ptr thrown;
    for (auto next = sinks_.begin(); next != sinks_.end();) {
      const std::uint32_t cookie = next->first;
      try {
        call(*next->second);
      } catch (...) {
        if (!thrown) thrown = std::current_exception();
      }
      next = sinks_.upper_bound(cookie);
    }
    if (thrown) std::rethrow_exception(thrown);
  }

 private:
  std::map<std::uint32_t, Sink*> sinks_;
  std::uint32_t lastCookie_ = 0;
};

using EventSinks = Sinks<IHostEventSource, IHostEventSink>;
using KeySinks = Sinks<IKeySource, IKeySink>;
using SignalSinks = Sinks<ISignalSource, ISignalSink>;

/// All sinks that a host has subscribed to an object.
struct HostSinks {
  void Clear() {
    Events.Clear();
    Keys.Clear();
    Signals.Clear();
  }

  EventSinks Events;
  KeySinks Keys;
  SignalSinks Signals;
};

}  // namespace keplo::component
