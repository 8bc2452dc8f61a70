#pragma once

#include <filesystem>
#include <string>

#include "failure.h"
#include "host/component_entry.h"

namespace keplo {

/// An object was not created because what it keeps could not be written.
class ObjectNotWritten : public Failure {
 public:
  using Failure::Failure;
};

/// A component loaded into this process. It is unloaded at the end of its life, unless an object of it is
/// still alive.
class Component {
 public:
  /// @throws Failure that names the file and the reason: missing, cut short, no component
  explicit Component(const std::filesystem::path& file);
  ~Component();
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  const std::filesystem::path& File() const { return file_; }

  /// Creates an object of a class.
  /// @throws Failure if the component does not offer the class, or with the object's own reason;
  /// ObjectNotWritten where that is a first install that could not be written
  ComponentObject Create(const std::string& className, const CreationContext& context) const;

  /// Makes the component's classes known to hosts of this user, or unknown again.
  /// @throws Failure
  void Register() const;
  void Unregister() const;

  bool CanUnload() const { return canUnload_() == 0; }

 private:
  template <typename Entry>
  Entry* EntryPoint(const char* name) const;

  std::filesystem::path file_;
  void* library_ = nullptr;
  DllRegisterServerEntry* register_ = nullptr;
  DllUnregisterServerEntry* unregister_ = nullptr;
  DllGetClassObjectEntry* getClass_ = nullptr;
  DllCanUnloadNowEntry* canUnload_ = nullptr;
  DllGetWriteFailureEntry* writeFailure_ = nullptr;  // null where the component has none
};

}  // namespace keplo
