#include "component/keplo_class.h"

#include <QApplication>
#include <cerrno>
#include <exception>

#include "component/keplo_object.h"
#include "failure.h"
#include "install/first_install.h"

namespace keplo::component {

namespace {

/// Detects mistakes of a host that would otherwise show later, as missing events or a crash.
void RequireUsable(const CreationContext& context) {
  const QCoreApplication* const application = QCoreApplication::instance();
  if (application == nullptr) {
    throw Failure(EINVAL,
                  "The host has no event loop of Qt, from which the plug-in takes its ticks. Make a "
                  "QCoreApplication before the object, or a QApplication to show windows, and run it.");
  }
  if (context.MayUseDisplay && qobject_cast<const QApplication*>(application) == nullptr) {
    throw Failure(EINVAL,
                  "The host lets the plug-in show windows, but has no QApplication. Make one in place of the "
                  "QCoreApplication, or leave MayUseDisplay false.");
  }
  if (context.ApplicationPath.empty()) {
    throw Failure(EINVAL,
                  "The host names no application path. Set ApplicationPath to the folder of keplo.cfg "
                  "and the event map.");
  }
}

}  // namespace

void KeploClass::SetUp(const CreationContext& context) try {
  if (!CompleteInstall(context.ApplicationPath)) return;
  Log(context.Log).Write(LogLevel::Info, "Brought a first install to " + context.ApplicationPath);
} catch (const Failure& failure) {
  writeFailure_ = failure.Number() == 0 ? EIO : failure.Number();
  throw;
}

ComponentObject KeploClass::CreateObject(const CreationContext& context, std::string& failure) try {
  writeFailure_ = 0;
  RequireUsable(context);
  SetUp(context);
  CreationContext absolute = context;  // so that a later change of the working directory does not matter
  absolute.ApplicationPath = std::filesystem::absolute(context.ApplicationPath).string();
  ComponentObject object(new KeploObject(absolute, [this] { --alive_; }));
  ++alive_;
  return object;
} catch (const std::exception& reason) {
  failure = reason.what();
  return nullptr;
}

}  // namespace keplo::component
