#pragma once

#include "host/component_entry.h"

namespace keplo::component {

/// The class of the component. Counts its objects.
class KeploClass final : public IComponentClass {
 public:
  virtual ~KeploClass() = default;

  ComponentObject CreateObject(const CreationContext& context, std::string& failure) override;

  bool AnyAlive() const { return alive_ > 0; }
  /// The number of the failure if the last CreateObject could not write a first install; otherwise 0.
  int WriteFailure() const { return writeFailure_; }

 private:
  void SetUp(const CreationContext& context);

  int alive_ = 0;
  int writeFailure_ = 0;
};

}  // namespace keplo::component
