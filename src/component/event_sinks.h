#pragma once

#include <map>

#include "host/ivelmora_input_plugin.h"

namespace keplo::component {

/// The subscribed sinks of one object.
class EventSinks : public IHostEventSource {
 public:
  virtual ~EventSinks() = default;

  std::uint32_t Subscribe(IHostEventSink& sink) override {
    sinks_.emplace(++lastCookie_, &sink);
    return lastCookie_;
  }
  void Unsubscribe(std::uint32_t cookie) override { sinks_.erase(cookie); }

  void Clear() { sinks_.clear(); }

  /// Calls every sink in the order of subscription; one may unsubscribe any of them meanwhile.
  template <typename Call>
  void ForEach(Call call) {
    for (auto next = sinks_.begin(); next != sinks_.end();) {
      const std::uint32_t cookie = next->first;
      call(*next->second);
      next = sinks_.upper_bound(cookie);
    }
  }

 private:
  std::map<std::uint32_t, IHostEventSink*> sinks_;
  std::uint32_t lastCookie_ = 0;
};

}  // namespace keplo::component
