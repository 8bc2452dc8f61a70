#include <dlfcn.h>
#include <stdlib.h>

#include "component_loader/class_file.h"
#include "component_loader/component_frame.h"
#include "failure.h"
#include "host/application_path.h"

namespace keplo::tests {

namespace {

/// A user with a data folder of their own.
class RegisteredTest : public ::testing::Test {
 protected:
  RegisteredTest() { setenv("XDG_DATA_HOME", folder_.Path().c_str(), 1); }

  /// Expects that a step fails with a text that names a file and a reason.
  template <typename Step>
  static void ExpectFailure(const std::string& file, const std::string& reason, Step step) {
    for (const std::string& part : {file, reason}) ExpectPart(FailureOf(step).what(), part);
  }

  TempFolder folder_;
  const std::string classFile_ = "velmora/classes/InputKeplo.Keplo.json";
};

TEST_F(RegisteredTest, IsFoundByItsClassNameUntilItIsUnregistered) {
  const auto read = [] { ReadClassFile(kInputKeploClass); };
  const Component component{KEPLO_COMPONENT};
  component.Register();
  component.Register();
  EXPECT_EQ(ReadClassFile(kInputKeploClass), std::filesystem::path(KEPLO_COMPONENT));
  for (const auto& [content, reason] : std::vector<std::pair<std::string, std::string>>{
           {R"({"class": "InputKeplo.Keplo", "comp)", "it is not whole JSON. Register"},
           {R"({"component": )" + std::string(100000, '[') + std::string(100000, ']') + "}", "deeper than"},
           {R"({"class": "InputKeplo.Keplo"})", "names no component"},
           {R"({"component": "inputkeplo.so"})", "absolute path"},
           {R"({"component": 5})", "names no component"}}) {
    folder_.Write(classFile_, content);
    ExpectFailure(classFile_, reason, read);
  }
  component.Unregister();
  component.Unregister();
  ExpectFailure(classFile_, "No such file", read);
}

TEST_F(RegisteredTest, ReportsWhyAComponentCannotBeLoaded) {
  std::ifstream file(KEPLO_COMPONENT, std::ios::binary);
  const std::string whole((std::istreambuf_iterator<char>(file)), {});
  for (const auto& [path, reason] : std::vector<std::pair<std::string, std::string>>{
           {folder_.Write("text.so", std::string(5000, 'x')), "no shared object"},
           {folder_.Write("head.so", whole.substr(0, 40)), "no shared object"},
           {folder_.Write("tenth.so", whole.substr(0, whole.size() / 10)), "cut short"},
           {folder_.Write("almost.so", whole.substr(0, whole.size() - 1)), "cut short"},
           {folder_.Path() / "missing.so", "No such file"},
           {folder_.Path(), "folder"},
           {"/dev/null", "no regular file"},
           {KEPLO_FOREIGN_LIBRARY, "no entry point DllRegisterServer"}}) {
    ExpectFailure(path, reason, [&path = path] { const Component component(path); });
  }
}

TEST_F(RegisteredTest, ReportsWhyAnObjectCannotBeCreated) {
  const Component component{KEPLO_COMPONENT};
  CreationContext context;
  context.ApplicationPath = (folder_.Path() / "app").string();
  const auto create = [&] { component.Create(kInputKeploClass, context); };
  ExpectFailure(KEPLO_COMPONENT, "Other", [&] { component.Create("InputKeplo.Other", context); });
  context.ReplayFiles = {"/missing.mode2"};
  ExpectFailure("/missing.mode2", "No such", create);
  EXPECT_TRUE(component.CanUnload());
  context.ReplayFiles.clear();
  std::filesystem::remove(folder_.Path() / "app/keplo.cfg");
  std::filesystem::create_symlink("nowhere", folder_.Path() / "app/keplo.cfg");
  ExpectFailure("app/keplo.cfg", "No such file", create);
  context.ApplicationPath += "/inkeplo.ico/app";
  EXPECT_THROW(create(), ObjectNotWritten) << "no folder can be made there";
}

TEST(EntryPoints, RefuseAHostOfAnotherVersionAndNullPointers) {
  void* library = dlopen(KEPLO_COMPONENT, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto* getClass = reinterpret_cast<DllGetClassObjectEntry*>(dlsym(library, "DllGetClassObject"));
  IComponentClass* componentClass = nullptr;
  EXPECT_EQ(getClass(kInputKeploClass, kComponentInterfaceVersion + 1, &componentClass),
            kOtherInterfaceVersion);
  EXPECT_EQ(getClass(nullptr, kComponentInterfaceVersion, &componentClass), kUnknownClass);
  EXPECT_EQ(getClass(kInputKeploClass, kComponentInterfaceVersion, nullptr), kUnknownClass);
  EXPECT_EQ(componentClass, nullptr);
  dlclose(library);
}

}  // namespace

}  // namespace keplo::tests
