#pragma once

#include "host/component_entry.h"

namespace keplo::component {

/// The class of the component; counts its living objects.
class KeploClass final : public IComponentClass {
 public:
  virtual ~KeploClass() = default;

  ComponentObject CreateObject(const CreationContext& context, std::string& failure) override;

  bool AnyAlive() const { return alive_ > 0; }
  /// The number of the failure to write a first install that the last CreateObject ended with; 0 without one.
  int WriteFailure() const { return writeFailure_; }

 private:
  void SetUp(const CreationContext& context);

  int alive_ = 0;
  int writeFailure_ = 0;
};

}  // namespace keplo::component
