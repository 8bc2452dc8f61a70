#pragma once

#include "host/component_entry.h"

namespace keplo::component {

/// The class of the component; counts its living objects.
class KeploClass final : public IComponentClass {
 public:
  virtual ~KeploClass() = default;

  ComponentObject CreateObject(const CreationContext& context, std::string& failure) override;

  bool AnyAlive() const { return alive_ > 0; }

 private:
  int alive_ = 0;
};

}  // namespace keplo::component
