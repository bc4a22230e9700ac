// Finding a function by name in the loaded modules, as a host finds the optional exports of
// the modules it loaded.

#include <gtest/gtest.h>

#include "OdRxDynamicLinker.h"
#include "OdRxModule.h"

namespace {

TEST(FindSymbolTest, AnswersOnlyForWhatALoadedModuleDefinesItself) {
  OdRxDynamicLinker* linker = odrxDynamicLinker();
  ASSERT_TRUE(linker->getModule(OdString(L"RxTestModule")).isNull());
  EXPECT_EQ(linker->findSymbol("odrxGetAPIVersion"), nullptr) << "no module is loaded";

  ASSERT_FALSE(linker->loadModule(OdString(L"RxTestModule"), false).isNull());
  void* found = linker->findSymbol("odrxGetAPIVersion");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(reinterpret_cast<OdRxApiVersion (*)()>(found)(), kOdRxApiVersion);
  // dlsym reaches the C library's functions through the module; the module defines none.
  EXPECT_EQ(linker->findSymbol("malloc"), nullptr);
  EXPECT_EQ(linker->findSymbol("noSuchFunctionAnywhere"), nullptr);
  EXPECT_EQ(linker->findSymbol(""), nullptr);
  EXPECT_EQ(linker->findSymbol(nullptr), nullptr);

  ASSERT_TRUE(linker->unloadModule(OdString(L"RxTestModule")));
  EXPECT_EQ(linker->findSymbol("odrxGetAPIVersion"), nullptr);
}

}  // namespace
