// What a fix needs of the kernel to move every reference to a record: header variables read
// and written by name, the sub-entities of inserts and polylines, references to records by
// handle and by name found in one walk and moved in place, and reference setters that tell a record
// of their table from anything else.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>
#include <tuple>

#include "DbTestSupport.h"
#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDimStyleTable.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdError.h"

namespace {

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    out.push_back(line);
  }
  return out;
}

OdResult errorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const OdError& e) {
    return e.code();
  }
  return eOk;
}

TEST(DbReference, HeaderVariablesReadAndWriteByNameLeavingTheRestAsRead) {
  const auto file = dbtest::corpusFile("r2018_libredwg_example.dxf");
  if (file.empty() || !std::filesystem::exists(file)) GTEST_SKIP() << "corpus not available";
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  const std::string before = db->writeBuffer();

  OdResBufPtr layer = db->getHeaderVariable(L"$CLAYER");
  ASSERT_FALSE(layer.isNull());
  EXPECT_EQ(layer->restype(), 8);
  EXPECT_EQ(layer->getString(), L"Tavolo 3");
  EXPECT_TRUE(layer->next().isNull());
  OdResBufPtr extents = db->getHeaderVariable(L"$EXTMIN");
  ASSERT_FALSE(extents.isNull());
  EXPECT_EQ(extents->restype(), 10);
  EXPECT_EQ(extents->at(2)->restype(), 30) << "a point is three buffers";
  EXPECT_TRUE(db->getHeaderVariable(L"$NOSUCHVAR").isNull());
  EXPECT_TRUE(db->getHeaderVariable(L"CLAYER").isNull()) << "names are exact";

  db->setHeaderVariable(L"$CLAYER", OdResBuf::newRb(8, L"0").get());
  EXPECT_EQ(db->getHeaderVariable(L"$CLAYER")->getString(), L"0");
  auto a = lines(before);
  auto b = lines(db->writeBuffer());
  ASSERT_EQ(a.size(), b.size());
  std::vector<std::string> changed;
  for (size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i]) changed.push_back(a[i] + " -> " + b[i]);
  EXPECT_EQ(changed, (std::vector<std::string>{"Tavolo 3 -> 0"}));

  // An absent variable is added; bad names and values are refused, leaving the header be.
  db->setHeaderVariable(L"$USERI5", OdResBuf::newRb(70, 42).get());
  EXPECT_EQ(db->getHeaderVariable(L"$USERI5")->getInt32(), 42);
  EXPECT_EQ(errorOf([&] { db->setHeaderVariable(L"CLAYER", OdResBuf::newRb(8, L"0").get()); }),
            eInvalidInput);
  EXPECT_EQ(errorOf([&] { db->setHeaderVariable(L"$CLAYER", nullptr); }), eInvalidInput);
  EXPECT_EQ(errorOf([&] { db->setHeaderVariable(L"$CLAYER", OdResBuf::newRb(8, 3.5).get()); }),
            eInvalidInput);
  EXPECT_EQ(db->getHeaderVariable(L"$CLAYER")->getString(), L"0");

  const auto saved = testsupport::TempDir();
  db->writeFile(saved.path() / "saved.dxf");
  auto result =
      dbtest::ezdxf("h = ezdxf.readfile(path).header\nprint(h['$CLAYER'], h['$USERI5'])\n",
                    saved.path() / "saved.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output, "0 42\n");
}

TEST(DbReference, InsertsAndPolylinesListTheirSubEntities) {
  const auto file = dbtest::corpusFile("r2018_libredwg_example.dxf");
  if (file.empty() || !std::filesystem::exists(file)) GTEST_SKIP() << "corpus not available";
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  std::map<std::string, int> kernel;
  OdDbBlockTablePtr blocks = db->getBlockTableId().safeOpenObject();
  for (auto block = blocks->newIterator(); !block->done(); block->step()) {
    OdDbBlockTableRecordPtr record = block->getRecord();
    for (auto it = record->newIterator(); !it->done(); it->step()) {
      OdDbEntityPtr entity = OdDbEntity::cast(it->entity().get());
      if (entity.isNull()) continue;
      for (const OdDbObjectId& id : entity->subEntityIds()) {
        OdDbEntityPtr part = OdDbEntity::cast(id.safeOpenObject().get());
        ASSERT_FALSE(part.isNull());
        EXPECT_FALSE(part->layer().isEmpty());
        ++kernel[part->isA()->name().toUtf8() + "/" + entity->isA()->name().toUtf8()];
      }
    }
  }
  // ezdxf counts what belongs to each insert and polyline of every block and layout.
  auto result = dbtest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "a = v = s = 0\n"
      "for b in doc.blocks:\n"
      "  for e in b:\n"
      "    if e.dxftype() == 'INSERT' and e.attribs: a += len(e.attribs); s += 1\n"
      "    if e.dxftype() == 'POLYLINE': v += len(e.vertices); s += 1\n"
      "print(a, v, s)\n",
      file);
  ASSERT_EQ(result.exitCode, 0) << result.output;
  // VERTEX and SEQEND have no class of their own; ATTRIB has.
  int attributes = 0, others = 0;
  for (const auto& [kind, count] : kernel)
    (kind.rfind("AcDbAttribute/", 0) == 0 ? attributes : others) += count;
  std::istringstream counts(result.output);
  int a = 0, v = 0, s = 0;
  counts >> a >> v >> s;
  EXPECT_GT(a + v, 0) << "the file has attributes and vertices";
  EXPECT_EQ(attributes, a);
  EXPECT_EQ(others, v + s) << "vertices and one SEQEND each";
}

TEST(DbReference, RecordReferencesTellPointersNamesAndContainersAndRetargetInPlace) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbTextStyleTablePtr styles = db->getTextStyleTableId().safeOpenObject(OdDb::kForWrite);
  const OdDbObjectId standard = styles->getAt(L"Standard");
  OdDbTextStyleTableRecordPtr notes = OdDbTextStyleTableRecord::createObject();
  notes->setName(L"Notes");
  const OdDbObjectId notesId = styles->add(notes.get());
  notes->createExtensionDictionary();
  const OdDbObjectId extension = notes->extensionDictionary();
  notes.release();
  styles.release();
  OdDbDimStyleTablePtr dimStyles = db->getDimStyleTableId().safeOpenObject();
  const OdDbObjectId dimStandard = dimStyles->getAt(L"Standard");
  dimStyles.release();
  OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(L"Walls");
  const OdDbObjectId walls = layers->add(layer.get());
  layer.release();
  layers.release();
  OdDbBlockTableRecordPtr space = db->getModelSpaceId().safeOpenObject(OdDb::kForWrite);
  OdDbEntityPtr point = OdDbEntity::createObject();
  space->appendOdDbEntity(point.get());
  point->setLayer(walls);
  point.release();
  space.release();

  using Link = OdDbDatabase::RecordLink;
  auto found = [&](const OdDbObjectIdArray& records) {
    std::vector<std::tuple<OdDbObjectId, OdDbObjectId, Link>> out;
    for (const auto& r : db->recordReferences(records))
      out.emplace_back(r.record, r.holder, r.link);
    return out;
  };
  // The dimension style points at Standard; Notes is only the container of its dictionary;
  // the point names Walls; a table head's list of its records is no reference; null ids and
  // objects that are no records are left out.
  const auto pointId = db->recordReferences({walls}).at(0).holder;
  EXPECT_EQ(found({standard, notesId, walls, OdDbObjectId(), extension}),
            (std::vector<std::tuple<OdDbObjectId, OdDbObjectId, Link>>{
                {standard, dimStandard, Link::kPointer},
                {walls, pointId, Link::kName},
                {notesId, extension, Link::kContainer}}));

  std::size_t done = 0;
  EXPECT_EQ(db->retargetRecordReferences({dimStandard}, standard, notesId, done), 1u);
  EXPECT_EQ(db->retargetRecordReferences({extension}, notesId, standard, done), 0u)
      << "a container link is not moved";
  EXPECT_EQ(db->retargetRecordReferences({pointId, dimStandard}, walls, db->getLayerZeroId(), done),
            1u);
  EXPECT_EQ(done, 2u);
  OdDbDimStyleTableRecordPtr dim = dimStandard.safeOpenObject();
  EXPECT_EQ(dim->dimtxsty(), notesId);
  dim.release();
  OdDbEntityPtr moved = pointId.safeOpenObject();
  EXPECT_EQ(moved->layer(), L"0");
  moved.release();
  EXPECT_EQ(found({standard, walls}),
            (std::vector<std::tuple<OdDbObjectId, OdDbObjectId, Link>>{}));
  EXPECT_EQ(errorOf([&] { db->retargetRecordReferences({dimStandard}, notesId, walls, done); }),
            eInvalidInput)
      << "a text style is not replaced by a layer";
}

TEST(DbReference, SettersTellARecordOfTheirTableFromAnythingElse) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbDatabasePtr other = OdDbDatabase::createEmpty();
  OdDbObjectId walls;
  {
    OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(L"Walls");
    walls = layers->add(layer.get());
  }
  OdDbBlockTableRecordPtr space = db->getModelSpaceId().safeOpenObject(OdDb::kForWrite);
  OdDbEntityPtr point = OdDbEntity::createObject();
  space->appendOdDbEntity(point.get());
  EXPECT_EQ(errorOf([&] { point->setLayer(walls); }), eOk) << "a layer added since loading";
  EXPECT_EQ(errorOf([&] { point->setLayer(db->getLinetypeContinuousId()); }), eInvalidInput);
  EXPECT_EQ(errorOf([&] { point->setLinetype(walls); }), eInvalidInput);
  EXPECT_EQ(errorOf([&] { point->setLayer(db->getLayerTableId()); }), eInvalidInput);
  EXPECT_EQ(errorOf([&] { point->setLayer(other->getLayerZeroId()); }), eWrongDatabase);
  EXPECT_EQ(errorOf([&] { point->setLayer(OdDbObjectId()); }), eNullObjectId);
  walls.safeOpenObject(OdDb::kForWrite)->erase();
  EXPECT_EQ(errorOf([&] { point->setLayer(walls); }), eWasErased);
  EXPECT_EQ(point->layer(), L"Walls") << "a refused reference changes nothing";
  point.release();
  space.release();

  // A release-12 drawing: records found by position, as it has no owners.
  const auto file = dbtest::corpusFile("r12_libredwg_example.dxf");
  if (file.empty() || !std::filesystem::exists(file)) GTEST_SKIP() << "corpus not available";
  OdDbDatabasePtr r12 = OdDbDatabase::readFile(file);
  OdDbLayerTablePtr layers = r12->getLayerTableId().safeOpenObject();
  OdDbBlockTableRecordPtr model = r12->getModelSpaceId().safeOpenObject();
  OdDbEntityPtr first = OdDbEntity::cast(model->newIterator()->entity(OdDb::kForWrite).get());
  ASSERT_FALSE(first.isNull());
  int layerCount = 0;
  for (auto it = layers->newIterator(); !it->done(); it->step(), ++layerCount)
    EXPECT_EQ(errorOf([&] { first->setLayer(it->getRecordId()); }), eOk);
  EXPECT_GT(layerCount, 1);
  EXPECT_EQ(errorOf([&] { first->setLinetype(r12->getLayerZeroId()); }), eInvalidInput);
}

}  // namespace
