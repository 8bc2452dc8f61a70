#pragma once

#include <filesystem>
#include <string>

#include "failure.h"
#include "host/component_entry.h"

namespace keplo {

/// Thrown if an object was not created because its files could not be written.
class ObjectNotWritten : public Failure {
 public:
  using Failure::Failure;
};

/// A component loaded into this process. It is unloaded on destruction, unless one of its objects still
/// exists.
class Component {
 public:
  /// @throws Failure with file and reason: missing, truncated, or not a component
  explicit Component(const std::filesystem::path& file);
  ~Component();
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  const std::filesystem::path& File() const { return file_; }

  /// Creates an object of a class.
  /// @throws Failure if the component does not have the class, or with the reason given by the component
  /// @throws ObjectNotWritten if a first install could not be written
  ComponentObject Create(const std::string& className, const CreationContext& context) const;

  /// Makes the component's classes known to this user's hosts, or unknown again.
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
  DllGetWriteFailureEntry* writeFailure_ = nullptr;  // null if the component does not have it
};

}  // namespace keplo
