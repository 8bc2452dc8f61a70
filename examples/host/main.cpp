// A host of the infrared plug-in in one file: loads the component, lets it play recordings of key presses
// (or, without any, watch its line until Ctrl+C), and prints the events.
//
//     example-host APPLICATION-PATH [RECORDING...]

#include <dlfcn.h>
#include <keplo/component_entry.h>
#include <keplo/ivelmora_input_plugin.h>

#include <QCoreApplication>
#include <iostream>
#include <stdexcept>

namespace {

class Printer final : public keplo::IHostEventSink {
 public:
  explicit Printer(keplo::IEventCatalogue* catalogue) : catalogue_(catalogue) {}

  void TriggerInputEvent(keplo::HostInputEvent& event) override {
    keplo::EventDetails details;
    if (catalogue_ != nullptr) catalogue_->DescribeEvent(event.EventID, details);
    std::cout << "event " << event.EventID << " (" << details.EventName
              << "): " << std::get<std::string>(event.EventCommand) << std::endl;
  }

  void TriggerInputErrorCondition(keplo::HostErrorRecord& error, bool& /*stopping*/) override {
    std::cerr << error.ErrorProcedure << ": " << error.ErrorDescription << std::endl;
  }

 private:
  keplo::IEventCatalogue* catalogue_;
};

/// The component stays loaded to the end of the program, so that its objects may end whenever they like.
keplo::IComponentClass& LoadClass(const char* file) {
  void* library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw std::runtime_error(dlerror());
  auto* getClass = reinterpret_cast<keplo::DllGetClassObjectEntry*>(dlsym(library, "DllGetClassObject"));
  keplo::IComponentClass* componentClass = nullptr;
  if (getClass == nullptr ||
      getClass(keplo::kInputKeploClass, keplo::kComponentInterfaceVersion, &componentClass) != 0) {
    throw std::runtime_error(std::string(file) + " is no component for this host");
  }
  return *componentClass;
}

int Run(QCoreApplication& application) {
  const QStringList arguments = application.arguments();
  keplo::CreationContext context;
  context.ApplicationPath = arguments.value(1).toStdString();
  for (const QString& recording : arguments.mid(2)) context.ReplayFiles.push_back(recording.toStdString());
  context.Log = [](keplo::LogLevel, const std::string& text) { std::cerr << text << std::endl; };
  if (!context.ReplayFiles.empty()) context.ReplayPlayed = [&application] { application.quit(); };

  std::string failure;
  const keplo::ComponentObject object = LoadClass(KEPLO_COMPONENT).CreateObject(context, failure);
  if (object == nullptr) throw std::runtime_error(failure);
  auto* plugin = keplo::QueryInterface<keplo::IVelmoraInputPLugin>(*object);
  auto* events = keplo::QueryInterface<keplo::IHostEventSource>(*object);
  Printer printer(keplo::QueryInterface<keplo::IEventCatalogue>(*object));
  const std::uint32_t cookie = events->Subscribe(printer);

  auto host = std::make_shared<keplo::IVelmoraHost>();
  int status = 1;
  if (plugin->InputInitialise(host) == keplo::kInputDone) {
    plugin->InputStartMonitoring();
    status = application.exec();
    plugin->InputStopMonitoring();
  }
  plugin->InputTerminate();
  events->Unsubscribe(cookie);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);  // the plug-in takes its ticks from its event loop
  try {
    return Run(application);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << std::endl;
    return 1;
  }
}
