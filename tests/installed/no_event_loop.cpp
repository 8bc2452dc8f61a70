// A host without Qt is told so when it asks for an object. The plug-in is the one word of the command line.

#include <dlfcn.h>
#include <keplo/component_entry.h>

#include <cstdio>

int main(int /*argc*/, char** argv) {
  void* library = dlopen(argv[1], RTLD_NOW);
  if (library == nullptr) return std::puts(dlerror()), 2;
  auto* getClass = reinterpret_cast<keplo::DllGetClassObjectEntry*>(dlsym(library, "DllGetClassObject"));
  keplo::IComponentClass* componentClass = nullptr;
  getClass(keplo::kInputKeploClass, keplo::kComponentInterfaceVersion, &componentClass);
  keplo::CreationContext context;
  context.ApplicationPath = "never-made";
  std::string failure;
  const bool created = componentClass->CreateObject(context, failure) != nullptr;
  std::puts(failure.c_str());
  return created ? 1 : 0;
}
