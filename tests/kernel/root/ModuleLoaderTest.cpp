// Loading and unloading modules through odrxDynamicLinker(), with the test modules built
// into the executable's own directory and with files that are not modules.

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "OdError.h"
#include "OdRxClassDictionary.h"
#include "OdRxDynamicLinker.h"
#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;

// The message of the OdError that `action` throws, after checking its code.
template <class Action>
std::string errorOf(OdResult code, Action action) {
  try {
    action();
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), code) << e.what();
    return e.what();
  }
  ADD_FAILURE() << "nothing was thrown, expected " << odResultName(code);
  return {};
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Points STAUDIT_MODULE_PATH at a folder for the life of the object.
class ModulePathOverride {
 public:
  explicit ModulePathOverride(const fs::path& dir) {
    ::setenv("STAUDIT_MODULE_PATH", ("/nonexistent:" + dir.string()).c_str(), 1);
  }
  ~ModulePathOverride() { ::unsetenv("STAUDIT_MODULE_PATH"); }
};

TEST(ModuleLoaderTest, LoadsFindsAndUnloadsTheTestModule) {
  OdRxDynamicLinker* linker = odrxDynamicLinker();
  ASSERT_TRUE(linker->getModule(OdString(L"RxTestModule")).isNull());
  ASSERT_EQ(odrxClassDictionary()->getAt(OdString(L"RxGreeter")), nullptr);

  OdRxModule* module = linker->loadModule(OdString(L"RxTestModule.DLL"), false).get();
  ASSERT_NE(module, nullptr);
  EXPECT_TRUE(module->moduleName() == L"RxTestModule");
  EXPECT_TRUE(module->isKindOf(OdRxModule::desc()));
  EXPECT_TRUE(module->moduleFileName() ==
              OdString(fs::canonical(STAUDIT_BIN_DIR "/libRxTestModule.so").string()));
  EXPECT_EQ(module->numRefs(), 1) << "the linker keeps one reference, the caller none";
  EXPECT_EQ(linker->loadModule(OdString(L"RxTestModule"), false).get(), module);
  EXPECT_EQ(linker->getModule(OdString(L"libRxTestModule.so")).get(), module);
  EXPECT_TRUE(linker->loadedModules().contains(OdString(L"RxTestModule")));

  // initApp registered the module's class. RxGreeter is abstract, so an object made by its
  // name is the module's implementation class.
  {
    OdRxObjectPtr greeter = odrxCreateObject(OdString(L"RxGreeter"));
    ASSERT_FALSE(greeter.isNull());
    EXPECT_TRUE(greeter->isA()->name() == L"RxGreeter");
    EXPECT_EQ(greeter->numRefs(), 1);
  }

  EXPECT_TRUE(linker->unloadModule(OdString(L"RxTestModule.dll")));
  EXPECT_EQ(odrxClassDictionary()->getAt(OdString(L"RxGreeter")), nullptr);
  EXPECT_TRUE(odrxCreateObject(OdString(L"RxGreeter")).isNull());
  EXPECT_TRUE(linker->getModule(OdString(L"RxTestModule")).isNull());
  EXPECT_FALSE(linker->unloadModule(OdString(L"RxTestModule")));

  // A module can come back after it was unloaded, and registers again.
  OdRxModulePtr again = linker->loadModule(OdString(L"RxTestModule"), false);
  ASSERT_FALSE(again.isNull());
  EXPECT_NE(odrxClassDictionary()->getAt(OdString(L"RxGreeter")), nullptr);
  // Unloading while the caller still holds the module object is safe: the file stays mapped.
  EXPECT_TRUE(linker->unloadModule(OdString(L"RxTestModule")));
  EXPECT_EQ(again->numRefs(), 1);
  EXPECT_TRUE(again->moduleName() == L"RxTestModule");
}

TEST(ModuleLoaderTest, MissingModuleIsNullWhenSilentAndAnErrorOtherwise) {
  OdRxDynamicLinker* linker = odrxDynamicLinker();
  EXPECT_TRUE(linker->loadModule(OdString(L"NoSuchModule.dll"), true).isNull());
  std::string message =
      errorOf(eLoadFailed, [&] { linker->loadModule(OdString(L"NoSuchModule.dll"), false); });
  EXPECT_TRUE(contains(message, "NoSuchModule.dll")) << message;
  EXPECT_TRUE(contains(message, "libNoSuchModule.so or NoSuchModule.so")) << message;
  EXPECT_TRUE(contains(message, STAUDIT_BIN_DIR)) << message;
  EXPECT_TRUE(linker->findModuleFile(OdString(L"NoSuchModule")).isEmpty());
}

TEST(ModuleLoaderTest, LibraryWithoutEntryPointIsRefused) {
  OdRxDynamicLinker* linker = odrxDynamicLinker();
  for (bool silent : {false, true}) {
    std::string message = errorOf(
        eNoEntryPoint, [&] { linker->loadModule(OdString(L"RxNoEntryModule.dll"), silent); });
    EXPECT_TRUE(contains(message, "libRxNoEntryModule.so")) << message;
    EXPECT_TRUE(contains(message, "odrxCreateModuleObject")) << message;
  }
  EXPECT_TRUE(linker->getModule(OdString(L"RxNoEntryModule")).isNull());

  std::string message =
      errorOf(eLoadFailed, [&] { linker->loadModule(OdString(L"RxWrongVersionModule"), false); });
  EXPECT_TRUE(contains(message, "interface version")) << message;
  EXPECT_TRUE(linker->getModule(OdString(L"RxWrongVersionModule")).isNull());
}

TEST(ModuleLoaderTest, SearchPathFromTheEnvironmentAndBrokenFiles) {
  testsupport::TempDir dir;
  ModulePathOverride path(dir.path());
  OdRxDynamicLinker* linker = odrxDynamicLinker();
  ASSERT_GE(linker->searchPath().size(), 2u);
  EXPECT_EQ(fs::path(linker->searchPath()[0].toUtf8()), fs::canonical(STAUDIT_BIN_DIR))
      << "the executable's own directory comes first";

  // A copy under another name is found through the environment, as "Name.so" too.
  fs::copy_file(STAUDIT_BIN_DIR "/libRxNoEntryModule.so", dir.path() / "Relocated.so");
  std::string message =
      errorOf(eNoEntryPoint, [&] { linker->loadModule(OdString(L"Relocated.dll"), false); });
  EXPECT_TRUE(contains(message, (dir.path() / "Relocated.so").string())) << message;

  // A file that is not a shared library: the system's reason is passed on.
  std::ofstream(dir.path() / "libGarbage.so") << std::string(200, 'x');
  EXPECT_TRUE(linker->loadModule(OdString(L"Garbage.dll"), true).isNull());
  message = errorOf(eLoadFailed, [&] { linker->loadModule(OdString(L"Garbage.dll"), false); });
  EXPECT_TRUE(contains(message, (dir.path() / "libGarbage.so").string())) << message;
  EXPECT_TRUE(contains(message, "ELF header")) << "no system reason in: " << message;

  // What a configuration names loads from the search path only, and a failure says why
  // instead of throwing.
  OdString reason;
  EXPECT_TRUE(linker->loadFromSearchPath(OdString(L"Garbage.dll"), reason).isNull());
  EXPECT_TRUE(contains(reason.toUtf8(), (dir.path() / "libGarbage.so").string() + ": "))
      << reason.toUtf8();
  EXPECT_TRUE(linker->loadFromSearchPath(OdString(L"Relocated"), reason).isNull());
  EXPECT_TRUE(contains(reason.toUtf8(), "has no odrxCreateModuleObject")) << reason.toUtf8();
  // A path is refused even into a folder of the search path (the registry's test covers the
  // other spellings of a path); a module named by its name alone loads.
  fs::copy_file(STAUDIT_BIN_DIR "/libRxTestModule.so", dir.path() / "libElsewhere.so");
  EXPECT_TRUE(
      linker->loadFromSearchPath(OdString::fromUtf8(STAUDIT_BIN_DIR "/RxTestModule"), reason)
          .isNull());
  EXPECT_EQ(reason.toUtf8(), "not on the module search path: " + linker->searchPath()[0].toUtf8() +
                                 ", /nonexistent, " + dir.path().string());
  EXPECT_TRUE(linker->loadedModules().isEmpty());
  ASSERT_FALSE(linker->loadFromSearchPath(OdString(L"Elsewhere.dll"), reason).isNull());
  EXPECT_TRUE(linker->unloadModule(OdString(L"Elsewhere")));
}

}  // namespace
