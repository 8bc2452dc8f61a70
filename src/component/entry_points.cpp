#include <dlfcn.h>

#include <cerrno>
#include <string_view>

#include "component/keplo_class.h"
#include "component_loader/class_file.h"
#include "failure.h"

namespace {

using keplo::component::KeploClass;

KeploClass& TheClass() {
  static KeploClass theClass;
  return theClass;
}

/// The file that this component was loaded from.
std::filesystem::path OwnFile() {
  Dl_info info{};
  dladdr(reinterpret_cast<void*>(&TheClass), &info);
  return std::filesystem::absolute(info.dli_fname);
}

template <typename Step>
std::int32_t ErrorNumberOf(Step step) {
  try {
    step();
    return 0;
  } catch (const keplo::Failure& failure) {
    return failure.Number();
  } catch (const std::exception&) {
    return EIO;
  }
}

}  // namespace

extern "C" {

[[gnu::visibility("default")]] std::int32_t DllRegisterServer() {
  return ErrorNumberOf([] { keplo::WriteClassFile(keplo::kInputKeploClass, OwnFile()); });
}

[[gnu::visibility("default")]] std::int32_t DllUnregisterServer() {
  return ErrorNumberOf([] { keplo::RemoveClassFile(keplo::kInputKeploClass); });
}

[[gnu::visibility("default")]] std::int32_t DllGetClassObject(const char* className,
                                                              std::uint32_t interfaceVersion,
                                                              keplo::IComponentClass** componentClass) {
  if (interfaceVersion != keplo::kComponentInterfaceVersion) return keplo::kOtherInterfaceVersion;
  if (className == nullptr || componentClass == nullptr) return keplo::kUnknownClass;
  if (std::string_view(className) != keplo::kInputKeploClass) return keplo::kUnknownClass;
  *componentClass = &TheClass();
  return 0;
}

[[gnu::visibility("default")]] std::int32_t DllCanUnloadNow() { return TheClass().AnyAlive() ? 1 : 0; }

[[gnu::visibility("default")]] std::int32_t DllGetWriteFailure() { return TheClass().WriteFailure(); }

}  // extern "C"
