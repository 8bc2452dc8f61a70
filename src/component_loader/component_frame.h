#pragma once

#include <filesystem>
#include <string>

#include "host/component_entry.h"

namespace keplo {

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
  /// @throws Failure if the component does not offer the class, or with the object's own reason
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
};

}  // namespace keplo
