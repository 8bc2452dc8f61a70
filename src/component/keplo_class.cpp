#include "component/keplo_class.h"

#include <exception>

#include "component/keplo_object.h"
#include "install/first_install.h"

namespace keplo::component {

ComponentObject KeploClass::CreateObject(const CreationContext& context, std::string& failure) try {
  if (!IsSetUp(context.ApplicationPath)) {
    PosixFileSystem files;
    BringFirstInstall(context.ApplicationPath, files);
    Log(context.Log).Write(LogLevel::Info, "Brought a first install to " + context.ApplicationPath);
  }
  ComponentObject object(new KeploObject(context, [this] { --alive_; }));
  ++alive_;
  return object;
} catch (const std::exception& reason) {
  failure = reason.what();
  return nullptr;
}

}  // namespace keplo::component
