// Objects of a database: opening and closing, the errors a caller meets, saving what
// changed and nothing else, and what database reactors are told.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "DbTestSupport.h"
#include "OdDbAttribute.h"
#include "OdDbAttributeDefinition.h"
#include "OdDbBlockReference.h"
#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbDictionary.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdDbText.h"
#include "OdError.h"

namespace {

OdDbLayerTableRecordPtr openLayer(OdDbDatabase& db, const wchar_t* name, OdDb::OpenMode mode) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject();
  return table->getAt(name, mode);
}

struct Recorder : OdDbDatabaseReactor {
  std::vector<std::string> events;
  void objectModified(const OdDbDatabase*, const OdDbObject* obj) override {
    events.push_back("modified " + obj->isA()->name().toUtf8() +
                     (obj->isModified() ? " (says modified)" : ""));
  }
  void objectAppended(const OdDbDatabase*, const OdDbObject* obj) override {
    events.push_back("appended " + obj->isA()->name().toUtf8());
  }
  void objectErased(const OdDbDatabase*, const OdDbObject* obj, bool erased) override {
    events.push_back(std::string(erased ? "erased " : "unerased ") + obj->isA()->name().toUtf8());
  }
  void goodbye(const OdDbDatabase*) override { events.push_back("goodbye"); }
};

TEST(DbObject, ALayersColourChangeIsTheOnlyChangeInTheSavedFile) {
  for (const char* name :
       {"r2000_zcad_cyrillic_cp1251_48layers.dxf", "r12_libredwg_example.dxf",
        "bin_r2018_netdxf_sample.dxf", "r2007_cadreproj_korean_utf8_64layers_3mb.dxf"}) {
    SCOPED_TRACE(name);
    auto path = dbtest::corpusFile(name);
    if (path.empty()) GTEST_SKIP() << "the shared corpus is absent";
    OdDbDatabasePtr db = OdDbDatabase::readFile(path);
    const std::string original = db->writeBuffer();
    ASSERT_EQ(original, testsupport::readBytes(path)) << "an untouched drawing saves byte for byte";

    OdDbLayerTablePtr table = db->getLayerTableId().safeOpenObject();
    OdDbSymbolTableIteratorPtr it = table->newIterator();
    it->step();  // not layer 0: a layer in the middle of the table
    ASSERT_FALSE(it->done());
    OdDbObjectId id = it->getRecordId();
    {
      OdDbLayerTableRecordPtr layer = id.safeOpenObject(OdDb::kForWrite);
      layer->setColorIndex(layer->colorIndex() == 5 ? 6 : 5);
    }
    const std::string saved = db->writeBuffer();
    std::vector<std::string> diffs = dbtest::differingObjects(original, saved);
    ASSERT_EQ(diffs.size(), 1u);
    EXPECT_EQ(diffs[0].rfind("LAYER", 0), 0u) << diffs[0];

    OdDbDatabasePtr reread = OdDbDatabase::readBuffer(saved, "saved");
    OdDbLayerTableRecordPtr again = reread->getOdDbObjectId(id.getHandle()).safeOpenObject();
    OdDbLayerTableRecordPtr before = id.safeOpenObject();
    EXPECT_EQ(again->colorIndex(), before->colorIndex());
    EXPECT_EQ(again->isOff(), before->isOff());
  }
}

TEST(DbObject, OpeningFollowsTheRulesCallersRelyOn) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbObjectId zero = db->getLayerZeroId();
  ASSERT_FALSE(zero.isNull());

  EXPECT_THROW(OdDbObjectId().safeOpenObject(), OdError);
  EXPECT_TRUE(OdDbObjectId().openObject().isNull());
  {
    OdDbLayerTableRecordPtr reader = zero.safeOpenObject();
    EXPECT_THROW(reader->setColorIndex(3), OdError) << "a setter needs the object open for write";
    OdDbObjectPtr writer = zero.safeOpenObject(OdDb::kForWrite);
    try {
      zero.safeOpenObject(OdDb::kForWrite);
      FAIL() << "opening for write twice must fail";
    } catch (const OdError& e) {
      EXPECT_EQ(e.code(), eWasOpenedForWrite);
    }
    OdDbObjectPtr failed;
    EXPECT_EQ(zero.openObject(failed, OdDb::kForWrite), eWasOpenedForWrite);
    EXPECT_TRUE(failed.isNull());
  }
  // Closed again: write works once more, and a wrong class is refused.
  EXPECT_NO_THROW(zero.safeOpenObject(OdDb::kForWrite));
  EXPECT_THROW(OdDbTextPtr(zero.safeOpenObject()), OdError_NotThatKindOfClass);
  EXPECT_TRUE(OdDbText::cast(zero.safeOpenObject().get()).isNull());
  EXPECT_EQ(zero.safeOpenObject()->isA()->name(), OdString(L"AcDbLayerTableRecord"));

  // An erased record: gone from lookups and iterators, opened only when asked for.
  OdDbLayerTablePtr table = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr walls = OdDbLayerTableRecord::createObject();
  walls->setName(L"Walls");
  OdDbObjectId wallsId = table->add(walls.get());
  walls = nullptr;
  EXPECT_EQ(table->getAt(L"WALLS"), wallsId) << "names compare without regard to case";
  OdDbLayerTableRecordPtr dup = OdDbLayerTableRecord::createObject();
  dup->setName(L"walls");
  EXPECT_THROW(table->add(dup.get()), OdError);
  wallsId.safeOpenObject(OdDb::kForWrite)->erase();
  EXPECT_TRUE(table->getAt(L"Walls").isNull());
  EXPECT_EQ(table->getAt(L"Walls", true), wallsId);
  int count = 0;
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) ++count;
  EXPECT_EQ(count, 1);
  try {
    wallsId.safeOpenObject();
    FAIL() << "opening an erased object must fail";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eWasErased);
  }
  EXPECT_NO_THROW(wallsId.safeOpenObject(OdDb::kForRead, true));
  table = nullptr;
  const std::string saved = db->writeBuffer();
  EXPECT_EQ(saved.find("Walls"), std::string::npos) << "erased records are not saved";
}

TEST(DbObject, ReactorsHearOfChangesAndNotOfReads) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  auto reactor = OdRxObjectImpl<Recorder>::createObject();
  db->addReactor(reactor.get());
  db->addReactor(reactor.get());

  openLayer(*db, L"0", OdDb::kForRead);
  openLayer(*db, L"0", OdDb::kForWrite);  // opened for write, nothing changed
  EXPECT_TRUE(reactor->events.empty());

  openLayer(*db, L"0", OdDb::kForWrite)->setIsLocked(true);
  ASSERT_EQ(reactor->events.size(), 1u) << "one notice per close, not per setter";
  EXPECT_EQ(reactor->events[0], "modified AcDbLayerTableRecord (says modified)");

  {
    OdDbLayerTablePtr table = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(L"Doors");
    OdDbObjectId id = table->add(layer.get());
    layer = nullptr;
    id.safeOpenObject(OdDb::kForWrite)->erase();
  }
  std::vector<std::string> expected{"modified AcDbLayerTableRecord (says modified)",
                                    "appended AcDbLayerTableRecord", "erased AcDbLayerTableRecord",
                                    "modified AcDbLayerTable (says modified)"};
  EXPECT_EQ(reactor->events, expected);

  db->removeReactor(reactor.get());
  openLayer(*db, L"0", OdDb::kForWrite)->setIsLocked(false);
  EXPECT_EQ(reactor->events.size(), expected.size());
  db->addReactor(reactor.get());
  db = nullptr;
  EXPECT_EQ(reactor->events.back(), "goodbye");
}

TEST(DbObject, EntitiesMoveBetweenLayersAndStyles) {
  auto path = dbtest::corpusFile("r2004_ezdxf_text_alignments.dxf");
  if (path.empty()) GTEST_SKIP() << "the shared corpus is absent";
  OdDbDatabasePtr db = OdDbDatabase::readFile(path);
  OdDbBlockTableRecordPtr model = db->getModelSpaceId().safeOpenObject();
  OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject();
  OdDbObjectId zero = layers->getAt(L"0");
  int texts = 0, moved = 0;
  for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step()) {
    OdDbEntityPtr entity = it->entity(OdDb::kForWrite);
    // Drawings in the wild name layers their table lacks: such an entity has no layer id.
    if (entity->layerId().isNull()) {
      EXPECT_NE(entity->layer(), OdString(L"0"));
    }
    if (OdDbTextPtr text = OdDbText::cast(entity.get())) {
      ++texts;
      EXPECT_FALSE(text->textStyle().isNull()) << text->textStyleName().toUtf8();
    }
    if (entity->layerId() != zero) {
      entity->setLayer(zero);
      ++moved;
    }
    entity->setColorIndex(1);
  }
  EXPECT_GT(texts, 0);
  EXPECT_GT(moved, 0);
  EXPECT_THROW(OdDbEntityPtr(model->newIterator()->entity(OdDb::kForWrite))
                   ->setLayer(db->getLinetypeContinuousId()),
               OdError)
      << "a linetype is not a layer";

  testsupport::TempDir dir;
  db->writeFile(dir.path() / "moved.dxf");
  auto check = dbtest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "bad = [e for e in doc.modelspace() if e.dxf.layer != '0' or e.dxf.color != 1]\n"
      "print(len(bad), len(doc.modelspace()))\n",
      dir.path() / "moved.dxf");
  EXPECT_EQ(check.exitCode, 0) << check.output;
  EXPECT_EQ(check.output.rfind("0 ", 0), 0u) << check.output;
}

// New entities, of a class or only of tags, in model space and in new blocks, and an insert
// with its attributes: what ezdxf reads back, and owners as the kernel reads them again.
TEST(DbObject, NewEntitiesBlocksAndAttributesAreWrittenAsEzdxfReadsThem) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  auto entity = [](const char* tags) {
    OdDbEntityPtr e = OdDbEntity::createObject();
    e->initFromTemplate(tags);
    return e;
  };
  OdDbObjectId insertId;
  {
    OdDbBlockTableRecordPtr ms = db->getModelSpaceId().safeOpenObject(OdDb::kForWrite);
    OdDbTextPtr text = OdDbText::createObject();
    ms->appendOdDbEntity(text.get());
    text->setTextString(OdString(L"Cote 2,50 — Ébauche"));
    text->setPosition(10.0, -5.0);
    text->setHeight(3.5);
    EXPECT_TRUE(text->textString() == L"Cote 2,50 — Ébauche");
    EXPECT_EQ(text->height(), 3.5);

    // A new block takes entities at once; a name starting with '*' makes it anonymous.
    OdDbBlockTablePtr blocks = db->getBlockTableId().safeOpenObject(OdDb::kForWrite);
    OdDbObjectId tagged, anonymous;
    for (const wchar_t* name : {L"TAGGED", L"*U1"}) {
      OdDbBlockTableRecordPtr record = OdDbBlockTableRecord::createObject();
      record->setName(name);
      (name[0] == L'*' ? anonymous : tagged) = blocks->add(record.get());
    }
    const char* line =
        "0\nLINE\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0\n20\n0\n30\n0\n11\n5\n21\n5\n31\n0\n";
    OdDbBlockTableRecordPtr(anonymous.safeOpenObject(OdDb::kForWrite))
        ->appendOdDbEntity(entity(line).get());
    OdDbBlockTableRecordPtr block = tagged.safeOpenObject(OdDb::kForWrite);
    block->appendOdDbEntity(entity(line).get());
    OdDbAttributeDefinitionPtr definition = OdDbAttributeDefinition::createObject();
    block->appendOdDbEntity(definition.get());
    EXPECT_TRUE(block->hasAttributeDefinitions());

    OdDbBlockReferencePtr insert = OdDbBlockReference::createObject();
    insertId = ms->appendOdDbEntity(insert.get());
    insert->setBlockTableRecord(tagged);
    OdDbAttributePtr attribute;
    for (const wchar_t* value : {L"first", L"second"}) {
      attribute = OdDbAttribute::createObject();
      attribute->initFromTemplate(
          "0\nATTRIB\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0\n20\n0\n30\n0\n40\n2.5\n1\n\n"
          "100\nAcDbAttribute\n2\nTAG\n70\n0\n");
      attribute->setTextString(value);
      insert->appendAttribute(attribute.get());
    }
    // Misuse is refused with the object unchanged: a drawing's object, a bad template.
    EXPECT_THROW(insert->appendAttribute(attribute.get()), OdError);
    EXPECT_THROW(text->initFromTemplate(line), OdError);
    OdDbEntityPtr fresh = entity(line);
    for (const char* bad :
         {"0\nLINE\nx\n1\n", "0\nLINE\n10\nnot a number\n", "8\n0\n", "0\nLINE\n8\n"})
      EXPECT_THROW(fresh->initFromTemplate(bad), OdError) << bad;
    EXPECT_EQ(fresh->dxfType(), OdString(L"LINE"));
  }
  testsupport::TempDir dir;
  db->writeFile(dir.path() / "new.dxf");
  auto result = dbtest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "t = doc.modelspace().query('TEXT')[0]\n"
      "print(t.dxf.text, tuple(t.dxf.insert), t.dxf.height, len(doc.audit().errors))\n"
      "i = doc.modelspace().query('INSERT')[0]\n"
      "print(i.dxf.name, [a.dxf.text for a in i.attribs], i.seqend is not None)\n"
      "print([(b.name, b.block.dxf.flags, len(b)) for b in doc.blocks if b.name[0] != '*' or "
      "b.name == '*U1'])\n",
      dir.path() / "new.dxf");
  ASSERT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "Cote 2,50 — Ébauche (10.0, -5.0, 0.0) 3.5 0\n"
            "TAGGED ['first', 'second'] True\n"
            "[('TAGGED', 2, 2), ('*U1', 1, 1)]\n");

  // The attributes and their SEQEND follow the insert and name it as their owner.
  OdDbDatabasePtr back = OdDbDatabase::readFile(dir.path() / "new.dxf");
  OdDbEntityPtr insert = back->getOdDbObjectId(insertId.getHandle()).safeOpenObject();
  std::vector<std::string> parts;
  for (const OdDbObjectId& id : insert->subEntityIds()) {
    OdDbObjectPtr part = id.safeOpenObject();
    EXPECT_EQ(part->ownerId(), insert->objectId());
    parts.push_back(part->dxfType().toUtf8());
  }
  EXPECT_EQ(parts, (std::vector<std::string>{"ATTRIB", "ATTRIB", "SEQEND"}));
}

// Handles are indexed as runs of the file's order: a file listing them ascending is one
// run, an unordered one many, merged; every object, and new ones, must be found by handle.
TEST(DbObject, EveryObjectIsFoundByItsHandleWhateverTheFileOrder) {
  auto line = [](const std::string& handle) {
    std::string tags = "0\nLINE\n";
    if (!handle.empty()) tags += "5\n" + handle + "\n";
    return tags + "8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n";
  };
  std::vector<std::vector<std::string>> orders = {
      {"10", "20", "", "30"},        // ascending, one without a handle
      {"30", "10", "20", "10", ""},  // out of order, a duplicate, one without a handle
      {"", "", ""}};                 // no handles at all
  // Interleaved runs that tie at their heads and inside, and a handle three objects share.
  std::vector<std::string> interleaved;
  for (int k = 0; k < 300; ++k) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "%X", 0x40 + (k % 7) * 50 + k / 7);
    interleaved.push_back(k % 41 == 40 ? interleaved[k - 13] : hex);
  }
  interleaved.insert(interleaved.end(), {"41", "41", "7", "7"});
  orders.push_back(interleaved);
  for (const auto& handles : orders) {
    std::string file = "0\nSECTION\n2\nENTITIES\n";
    for (const std::string& h : handles) file += line(h);
    file += "0\nENDSEC\n0\nEOF\n";
    SCOPED_TRACE(file);
    OdDbDatabasePtr db = OdDbDatabase::readBuffer(file, "handles.dxf");
    OdDbBlockTableRecordPtr model = db->getModelSpaceId().safeOpenObject(OdDb::kForWrite);
    std::vector<OdDbObjectId> ids;
    for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step())
      ids.push_back(it->objectId());
    ASSERT_EQ(ids.size(), handles.size());
    OdDbTextPtr text = OdDbText::createObject();
    ids.push_back(model->appendOdDbEntity(text.get()));

    std::set<std::uint64_t> seen;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      const OdDbHandle h = ids[i].getHandle();
      EXPECT_TRUE(seen.insert(h.value()).second) << "handle " << h.ascii() << " given twice";
      EXPECT_EQ(db->getOdDbObjectId(h), ids[i]) << "object " << i << ", handle " << h.ascii();
      const bool firstWithIt = i < handles.size() && !handles[i].empty() &&
                               std::count(handles.begin(), handles.begin() + i, handles[i]) == 0;
      if (firstWithIt) {
        EXPECT_EQ(h.ascii(), handles[i]) << "the first object with a handle keeps it";
      }
    }
    EXPECT_TRUE(db->getOdDbObjectId(OdDbHandle(0x999)).isNull());
  }
}

}  // namespace
