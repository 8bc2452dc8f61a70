#include "component_loader/component_frame.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstring>

#include "component_loader/shared_object_check.h"
#include "failure.h"

namespace keplo {

namespace {

std::string LoaderReason() {
  const char* reason = dlerror();
  return reason == nullptr ? "the loader gives no reason" : reason;
}

}  // namespace

template <typename Entry>
Entry* Component::EntryPoint(const char* name) const {
  auto* entry = reinterpret_cast<Entry*>(dlsym(library_, name));
  if (entry != nullptr) return entry;
  dlclose(library_);
  throw Failure(ENOEXEC, file_.string() + " is no component: it has no entry point " + name + ".");
}

Component::Component(const std::filesystem::path& file) : file_(std::filesystem::absolute(file)) {
  if (const std::string reason = WhyNotLoadable(file_); !reason.empty()) {
    throw Failure(ENOEXEC, "The component " + file_.string() + " cannot be loaded: " + reason + ".");
  }
  library_ = dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library_ == nullptr) {
    throw Failure(ENOEXEC, "The component " + file_.string() + " cannot be loaded: " + LoaderReason());
  }
  register_ = EntryPoint<DllRegisterServerEntry>("DllRegisterServer");
  unregister_ = EntryPoint<DllUnregisterServerEntry>("DllUnregisterServer");
  getClass_ = EntryPoint<DllGetClassObjectEntry>("DllGetClassObject");
  canUnload_ = EntryPoint<DllCanUnloadNowEntry>("DllCanUnloadNow");
  writeFailure_ = reinterpret_cast<DllGetWriteFailureEntry*>(dlsym(library_, "DllGetWriteFailure"));
}

Component::~Component() {
  if (CanUnload()) dlclose(library_);
}

ComponentObject Component::Create(const std::string& className, const CreationContext& context) const {
  IComponentClass* componentClass = nullptr;
  switch (getClass_(className.c_str(), kComponentInterfaceVersion, &componentClass)) {
    case 0:
      break;
    case kOtherInterfaceVersion:
      throw Failure(EPROTO,
                    "The component " + file_.string() + " was built for another version of the host.");
    default:
      throw Failure(ENOENT,
                    "The component " + file_.string() + " does not offer the class " + className + ".");
  }
  std::string failure;
  ComponentObject object = componentClass->CreateObject(context, failure);
  if (object != nullptr) return object;
  const std::string text = className + " cannot be created: " + failure;
  if (const int number = writeFailure_ == nullptr ? 0 : writeFailure_(); number != 0) {
    throw ObjectNotWritten(number, text);
  }
  throw Failure(EIO, text);
}

void Component::Register() const {
  if (const int error = register_(); error != 0) {
    throw Failure(error,
                  "The component " + file_.string() + " cannot be registered: " + std::strerror(error));
  }
}

void Component::Unregister() const {
  if (const int error = unregister_(); error != 0) {
    throw Failure(error,
                  "The component " + file_.string() + " cannot be unregistered: " + std::strerror(error));
  }
}

}  // namespace keplo
