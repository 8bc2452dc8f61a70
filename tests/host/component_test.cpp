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

  template <typename Step>
  static std::string FailureOf(Step step) {
    try {
      step();
      return "no failure";
    } catch (const Failure& failure) {
      return failure.what();
    }
  }

  static bool Tells(const std::string& text, const std::string& file, const std::string& reason) {
    return text.find(file) != std::string::npos && text.find(reason) != std::string::npos;
  }

  TempFolder folder_;
  const std::string classFile_ = "velmora/classes/InputKeplo.Keplo.json";
};

TEST_F(RegisteredTest, IsFoundByItsClassNameUntilItIsUnregistered) {
  const Component component{KEPLO_COMPONENT};
  component.Register();
  component.Register();
  EXPECT_EQ(ReadClassFile(kInputKeploClass), std::filesystem::path(KEPLO_COMPONENT));
  component.Unregister();
  component.Unregister();
  EXPECT_TRUE(Tells(FailureOf([] { ReadClassFile(kInputKeploClass); }), classFile_, "No such file"));
}

TEST_F(RegisteredTest, ToldFromADamagedClassFile) {
  struct Case {
    std::string Content, Reason;
  };
  std::filesystem::create_directories((folder_.Path() / classFile_).parent_path());
  for (const Case& damaged : std::vector<Case>{{"", "not whole JSON"},
                                               {R"({"class": "InputKeplo.Keplo", "comp)", "not whole JSON"},
                                               {"[]", "not whole JSON"},
                                               {R"({"class": "InputKeplo.Keplo"})", "names no component"},
                                               {R"({"component": "inputkeplo.so"})", "absolute path"},
                                               {R"({"component": 5})", "names no component"}}) {
    folder_.Write(classFile_, damaged.Content);
    const std::string told = FailureOf([] { ReadClassFile(kInputKeploClass); });
    EXPECT_TRUE(Tells(told, classFile_, damaged.Reason)) << damaged.Content << ": " << told;
  }
}

TEST_F(RegisteredTest, TellsWhyAComponentCannotBeLoaded) {
  const std::string whole = [] {
    std::ifstream file(KEPLO_COMPONENT, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), {});
  }();
  struct Case {
    std::string Name, Content, Reason;
  };
  for (const Case& broken :
       std::vector<Case>{{"empty.so", "", "no shared object"},
                         {"text.so", std::string(5000, 'x'), "no shared object"},
                         {"head.so", whole.substr(0, 40), "no shared object"},
                         {"tenth.so", whole.substr(0, whole.size() / 10), "cut short"},
                         {"almost.so", whole.substr(0, whole.size() - 1), "cut short"}}) {
    const std::string path = folder_.Write(broken.Name, broken.Content).string();
    const std::string told = FailureOf([&] { const Component component(path); });
    EXPECT_TRUE(Tells(told, path, broken.Reason)) << told;
  }
  const std::string missing = (folder_.Path() / "missing.so").string();
  EXPECT_TRUE(Tells(FailureOf([&] { const Component component(missing); }), missing, "No such file"));
  const std::string folder = folder_.Path().string();
  EXPECT_TRUE(Tells(FailureOf([&] { const Component component(folder); }), folder, "folder"));
  const std::string foreign = KEPLO_FOREIGN_LIBRARY;
  EXPECT_TRUE(Tells(FailureOf([&] { const Component component(foreign); }), foreign,
                    "no entry point DllRegisterServer"));
}

TEST_F(RegisteredTest, TellsWhyAnObjectCannotBeCreated) {
  const Component component{KEPLO_COMPONENT};
  CreationContext context;
  context.ApplicationPath = (folder_.Path() / "app").string();
  EXPECT_TRUE(Tells(FailureOf([&] { component.Create("InputKeplo.Other", context); }), KEPLO_COMPONENT,
                    "InputKeplo.Other"));
  context.ReplayFiles = {"/missing.mode2"};
  EXPECT_TRUE(
      Tells(FailureOf([&] { component.Create(kInputKeploClass, context); }), "/missing.mode2", "No such"));
  EXPECT_TRUE(component.CanUnload());

  context.ReplayFiles.clear();
  std::filesystem::remove(folder_.Path() / "app/keplo.cfg");
  EXPECT_TRUE(Tells(FailureOf([&] { component.Create(kInputKeploClass, context); }), "app/keplo.cfg",
                    "No such file"));
}

TEST(EntryPoints, RefuseAHostOfAnotherVersionAndPointersToNothing) {
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
