// Inserting one real drawing into another as a block: into a new drawing and into drawings of
// the corpus, of several releases; what ezdxf and a reload make of the result.

#include <gtest/gtest.h>

#include <set>

#include "DbTestSupport.h"
#include "DrawingBuilders.h"
#include "OdDbBlockReference.h"
#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdError.h"
#include "OdRxObjectImpl.h"

namespace {

struct AppendCounter : OdDbDatabaseReactor {
  std::size_t appended = 0;
  std::set<std::uint64_t> handles;
  void objectAppended(const OdDbDatabase*, const OdDbObject* obj) override {
    ++appended;
    handles.insert(obj->getDbHandle().value());
  }
};

OdDbObjectId blockNamed(OdDbDatabase& db, const OdString& name) {
  OdDbBlockTablePtr blocks = db.getBlockTableId().safeOpenObject();
  return blocks->getAt(name);
}

// Every handle of a saved drawing, in file order; a file of release 12 may have none.
std::vector<std::uint64_t> savedHandles(const std::string& bytes) {
  auto doc = DxfReader::readBuffer(bytes, "saved");
  std::vector<std::uint64_t> handles;
  for (std::size_t s = 0; s < doc->sectionCount(); ++s)
    for (const DxfObject& obj : doc->section(s).objects())
      if (obj.handle() != 0) handles.push_back(obj.handle());
  return handles;
}

TEST(DbInsert, RealDrawingsGoInAsABlockWithTheirRecords) {
  const struct {
    const char* source;
    const char* target;  // null for a new drawing
  } cases[] = {
      {"r2018_ezdxf_text_13dimstyles.dxf", nullptr},  // dimensions: anonymous blocks, styles
      {"r2000_godxf_supported_entities.dxf", "r2013_ezdxf_groups.dxf"},
      {"r2007_godxf_texts_in_block.dxf", "r2007_godxf_texts_in_block.dxf"},  // same blocks
      {"r2007_librecad_dim_sample.dxf", "r2007_librecad_dim_sample.dxf"},    // same *D blocks
      {"r14_libredwg_example.dxf", "r2018_netdxf_sample.dxf"},
      {"r12_acsharp_sample_ascii.dxf", "r12_dxflib_demo_german_block_names.dxf"},
  };
  if (testsupport::corpusDir().empty()) GTEST_SKIP() << "the shared corpus is absent";
  testsupport::TempDir dir;
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.source) + " into " + (c.target ? c.target : "a new drawing"));
    OdDbDatabasePtr source = OdDbDatabase::readFile(dbtest::corpusFile(c.source));
    OdDbDatabasePtr target = c.target ? OdDbDatabase::readFile(dbtest::corpusFile(c.target))
                                      : OdDbDatabase::createEmpty();
    const std::size_t sourceCount = testsupport::entitiesOf(source->getModelSpaceId()).size();
    const std::size_t modelCount = testsupport::entitiesOf(target->getModelSpaceId()).size();
    const std::string sourceBytes = source->writeBuffer();

    // A layer of the source that the target has too, with another colour: the target's stays.
    OdString shared;
    for (const OdDbObjectId& id : testsupport::entitiesOf(source->getModelSpaceId()))
      if (OdDbEntityPtr e = id.safeOpenObject(); e->layer() != OdString(L"0")) shared = e->layer();
    OdDbObjectId kept;
    if (!shared.isEmpty()) {
      OdDbLayerTablePtr layers = target->getLayerTableId().safeOpenObject(OdDb::kForWrite);
      kept = layers->getAt(shared);
      if (kept.isNull()) {
        OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
        layer->setName(shared);
        kept = layers->add(layer.get());
        layer->setColorIndex(42);
      }
    }
    const short keptColour =
        kept.isNull() ? 0 : OdDbLayerTableRecordPtr(kept.safeOpenObject())->colorIndex();
    const std::uint64_t firstNewHandle = target->nextHandle().value();
    auto counter = OdRxObjectImpl<AppendCounter>::createObject();
    target->addReactor(counter.get());
    const OdDbDatabase::InsertResult result = target->insert(L"plan", *source);
    target->removeReactor(counter.get());

    EXPECT_EQ(result.blockName, OdString(target->formatRelease() < 1012 ? L"PLAN" : L"plan"));
    EXPECT_EQ(blockNamed(*target, result.blockName), result.block);
    EXPECT_EQ(result.entities, sourceCount);
    EXPECT_EQ(testsupport::entitiesOf(result.block).size(), sourceCount);
    EXPECT_GT(sourceCount, 0u);
    EXPECT_EQ(testsupport::entitiesOf(target->getModelSpaceId()).size(), modelCount + 1);
    OdDbBlockReferencePtr insert = result.reference.safeOpenObject();
    EXPECT_EQ(insert->blockTableRecord(), result.block);
    EXPECT_EQ(insert->layer(), OdString(target->getHeaderVariable(L"$CLAYER")->getString()));
    if (!kept.isNull()) {
      EXPECT_EQ(OdDbLayerTableRecordPtr(kept.safeOpenObject())->colorIndex(), keptColour);
    }
    for (const OdDbObjectId& id : testsupport::entitiesOf(result.block)) {
      OdDbEntityPtr e = id.safeOpenObject();
      EXPECT_FALSE(e->layerId().isNull()) << "layer " << e->layer().toUtf8() << " came along";
      EXPECT_GE(e->getDbHandle().value(), firstNewHandle);
    }
    EXPECT_GE(counter->appended, sourceCount + 2) << "reactors hear of every new object";
    EXPECT_GE(*counter->handles.begin(), firstNewHandle);
    EXPECT_EQ(source->writeBuffer(), sourceBytes) << "the source is left as it was";

    // A second insert of the same drawing gets a name of its own.
    const OdString second = target->insert(L"plan", *source).blockName;
    EXPECT_EQ(second, OdString(target->formatRelease() < 1012 ? L"PLAN_2" : L"plan(2)"));

    const auto saved = dir.path() / (std::string("into_") + c.source);
    target->writeFile(saved);
    const std::string bytes = testsupport::readBytes(saved);
    std::vector<std::uint64_t> handles = savedHandles(bytes);
    EXPECT_EQ(std::set<std::uint64_t>(handles.begin(), handles.end()).size(), handles.size())
        << "handles are unique";
    OdDbDatabasePtr reloaded = OdDbDatabase::readBuffer(bytes, saved.string());
    EXPECT_EQ(testsupport::entitiesOf(blockNamed(*reloaded, result.blockName)).size(), sourceCount);
    EXPECT_EQ(testsupport::entitiesOf(blockNamed(*reloaded, second)).size(), sourceCount);
    EXPECT_EQ(testsupport::entitiesOf(reloaded->getModelSpaceId()).size(), modelCount + 2);

    auto oracle =
        dbtest::ezdxf("names = ('" + result.blockName.toUtf8() + "', '" + second.toUtf8() + "')\n" +
                          "doc = ezdxf.readfile(path)\n"
                          "a = doc.audit()\n"
                          "print('errors', len(a.errors), [e.message for e in "
                          "a.errors][:5])\n"
                          "inserts = [e for e in doc.modelspace() if e.dxftype() == "
                          "'INSERT' and e.dxf.name in "
                          "names]\n"
                          "print('inserts', len(inserts), 'block', "
                          "len(doc.blocks.get(names[0])))\n"
                          "def shown(layout): return {e.dxf.geometry for e in layout "
                          "if e.dxftype() == 'DIMENSION'}\n"
                          "print('shared dimension blocks', "
                          "len(shown(doc.modelspace()) & "
                          "shown(doc.blocks.get(names[1]))))\n",
                      saved);
    ASSERT_EQ(oracle.exitCode, 0) << oracle.output;
    EXPECT_NE(oracle.output.find("errors 0 "), std::string::npos) << oracle.output;
    EXPECT_NE(oracle.output.find("inserts 2 block " + std::to_string(sourceCount)),
              std::string::npos)
        << oracle.output;
    EXPECT_NE(oracle.output.find("shared dimension blocks 0"), std::string::npos) << oracle.output;
  }
}

// Fails the insert half-way, as any error after the first copies would.
struct FailingReactor : OdDbDatabaseReactor {
  int left = 12;  // of 17: among the copies, after records and block
  void objectAppended(const OdDbDatabase*, const OdDbObject*) override {
    if (--left == 0) throw OdError(eInvalidInput, "stopped on purpose");
  }
};

TEST(DbInsert, DrawingsThatCannotBeCombinedChangeNothing) {
  auto r12 = dbtest::corpusFile("r12_acsharp_sample_ascii.dxf");
  if (r12.empty()) GTEST_SKIP() << "the shared corpus is absent";
  OdDbDatabasePtr old = OdDbDatabase::readFile(r12);
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  const std::string before = drawing->writeBuffer();
  try {
    drawing->insert(L"old", *old);
    ADD_FAILURE() << "a release-12 drawing went into a release-2018 one";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eNotImplementedYet);
    const std::string message = e.description().toUtf8();
    EXPECT_NE(message.find("AC1009"), std::string::npos) << message;
    EXPECT_NE(message.find("AC1032"), std::string::npos) << message;
  }
  EXPECT_THROW(old->insert(L"new", *drawing), OdError);
  EXPECT_THROW(drawing->insert(L"self", *drawing), OdError);
  EXPECT_EQ(drawing->writeBuffer(), before);
  EXPECT_EQ(drawing->nextHandle(), OdDbDatabase::createEmpty()->nextHandle());

  // What an insert that fails half-way made is erased again: the saved drawing is as before.
  OdDbDatabasePtr plan = OdDbDatabase::readFile(dbtest::corpusFile("r2013_ezdxf_groups.dxf"));
  auto failing = OdRxObjectImpl<FailingReactor>::createObject();
  drawing->addReactor(failing.get());
  EXPECT_THROW(drawing->insert(L"plan", *plan), OdError);
  drawing->removeReactor(failing.get());
  EXPECT_LE(failing->left, 0);
  EXPECT_TRUE(blockNamed(*drawing, L"plan").isNull());
  EXPECT_TRUE(dbtest::differingObjects(before, drawing->writeBuffer()).empty());

  // Names a block record cannot hold are cleaned.
  OdDbDatabasePtr other = OdDbDatabase::createEmpty();
  EXPECT_EQ(drawing->insert(L"a<b>:c", *other).blockName, OdString(L"a_b__c"));
  EXPECT_EQ(old->insert(L"\u00e9t\u00e9 plan", *OdDbDatabase::readFile(r12)).blockName,
            OdString(L"_T__PLAN"));
}

}  // namespace
