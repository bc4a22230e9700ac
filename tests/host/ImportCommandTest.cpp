// IMPORT as a script runs it: the example floor plan goes into a drawing as a block after the
// silent check; a file that cannot be read is named with the reason and changes nothing.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "DrawingBuilders.h"
#include "HostTestSupport.h"
#include "OdDbBlockReference.h"
#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"

namespace {

namespace fs = std::filesystem;
using hosttest::count;
using hosttest::QuietHost;

TEST(HostImport, AScriptInsertsADrawingAsABlockAndABadFileChangesNothing) {
  QuietHost q;
  q.host.loadModule(L"HostTestModule.dll");
  const fs::path plan = fs::path(STAUDIT_SOURCE_DIR) / "examples" / "floor-plan.dxf";
  const fs::path broken = q.dir.path() / "broken.dxf";
  std::ofstream(broken)
      << "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\nnot a number\n0\nENDSEC\n0\nEOF\n";
  const fs::path missing = q.dir.path() / "missing.dxf";
  const fs::path script = q.dir.path() / "import.scr";
  const fs::path spaced = q.dir.path() / "my plan.dxf";  // the desktop quotes what it sends
  fs::copy_file(plan, spaced);
  std::ofstream(script) << "HOSTTESTALLOW 4\nIMPORT " << plan.string() << "\nIMPORT "
                        << plan.string() << "\nIMPORT \"" << spaced.string() << "\"\n";

  EXPECT_FALSE(q.host.runCommand(L"IMPORT").value);
  EXPECT_NE(q.host.output().find("IMPORT: no document is open"), std::string::npos);

  HostDocument* doc = q.host.openDrawing(hosttest::writeDrawing(q.dir.path() / "site.dxf"));
  ASSERT_TRUE(q.host.runScript(script));
  const std::string& out = q.host.output();
  const std::size_t check = out.find("test check of");
  const std::size_t first = out.find("IMPORT: floor-plan.dxf inserted as block floor-plan (");
  ASSERT_NE(first, std::string::npos) << out;
  EXPECT_LT(check, first) << "the silent check runs first";
  EXPECT_NE(out.find("IMPORT: floor-plan.dxf inserted as block floor-plan(2) ("), std::string::npos)
      << out;
  EXPECT_NE(out.find("IMPORT: my plan.dxf inserted as block my plan ("), std::string::npos) << out;
  EXPECT_TRUE(doc->isModified());

  OdDbDatabase* db = doc->database();
  OdDbBlockTablePtr blocks = db->getBlockTableId().safeOpenObject();
  const OdDbObjectId block = blocks->getAt(L"floor-plan");
  ASSERT_FALSE(block.isNull());
  OdDbDatabasePtr source = OdDbDatabase::readFile(plan);
  const std::size_t copied = testsupport::entitiesOf(block).size();
  EXPECT_EQ(copied, testsupport::entitiesOf(source->getModelSpaceId()).size());
  EXPECT_NE(out.find("(" + std::to_string(copied) + " entities)"), std::string::npos) << out;
  const std::vector<OdDbObjectId> model = testsupport::entitiesOf(db->getModelSpaceId());
  ASSERT_EQ(model.size(), 3u);
  EXPECT_EQ(OdDbBlockReferencePtr(model[0].safeOpenObject())->blockTableRecord(), block);

  // A second drawing, unchanged by files that cannot be read.
  HostDocument* other = q.host.openDrawing(hosttest::writeDrawing(q.dir.path() / "other.dxf"));
  const std::string before = other->database()->writeBuffer();
  const std::size_t printed = out.size();
  for (const fs::path& bad : {broken, missing})
    q.host.submit(OdString::fromUtf8("IMPORT " + bad.string() + " "));
  const std::string failures = out.substr(printed);
  EXPECT_EQ(count(failures, "IMPORT: cannot read " + broken.string() + ": line 8, group code 10"),
            1u)
      << "the reader's reason: " << failures;
  EXPECT_EQ(count(failures, "IMPORT: cannot read " + missing.string() + ": "), 1u) << failures;
  EXPECT_EQ(count(failures, "IMPORT: "), 2u) << "one line each: " << failures;
  EXPECT_FALSE(other->isModified());
  EXPECT_EQ(other->database()->writeBuffer(), before);
}

}  // namespace
