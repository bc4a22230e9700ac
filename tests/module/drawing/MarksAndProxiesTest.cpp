// Ignore marks stored in objects' extension dictionaries, and the snapshots of tables and
// blocks that plug-ins walk.

#include <gtest/gtest.h>

#include "DrawingTestSupport.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDictionary.h"
#include "OdDbText.h"
#include "OdDbXrecord.h"
#include "OdError.h"
#include "StBlockProxy.h"
#include "StBlockProxyImpl.h"
#include "StIgnoreMarks.h"
#include "StManager.h"
#include "StTableProxy.h"
#include "StTableProxyImpl.h"

namespace {

OdDbObjectId addText(OdDbDatabase& db, const wchar_t* text) {
  OdDbBlockTableRecordPtr model = db.getModelSpaceId().safeOpenObject(OdDb::kForWrite);
  OdDbTextPtr entity = OdDbText::createObject();
  entity->setTextString(text);
  return model->appendOdDbEntity(entity.get());
}

TEST(IgnoreMarks, TheSecondMarkReplacesTheFirstAndSurvivesSaveAndReload) {
  testsupport::TempDir dir;
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  const OdDbObjectId layer = drawingtest::addLayer(*db, L"Walls", 3);
  const OdDbHandle handle = layer.getHandle();
  EXPECT_FALSE(st::hasObjectIgnoredMark(layer));
  EXPECT_EQ(st::getObjectIgnoredFlags(layer).flags, 0);

  ASSERT_TRUE(st::writeObjectIgnoredMark(layer, L"first"));
  ASSERT_TRUE(st::writeObjectIgnoredMark(layer, L"Zoë Åström"));
  OdDbDatabasePtr reread = drawingtest::saveAndReload(*db, dir.path() / "marked.dxf");
  const OdDbObjectId again = reread->getOdDbObjectId(handle);
  ASSERT_TRUE(st::hasObjectIgnoredMark(again));
  st::StFlagsRecord mark = st::getObjectIgnoredFlags(again);
  EXPECT_EQ(mark.flags, 1);
  EXPECT_TRUE(mark.extra.isEmpty());
  EXPECT_EQ(mark.ignoredBy.toUtf8(), "Zoë Åström");
  EXPECT_EQ(st::getObjectIgnoredBy(again), mark.ignoredBy);
  OdDbDictionaryPtr dict = st::getObjectStFlagsDictionary(again).safeOpenObject();
  EXPECT_EQ(dict->numEntries(), 1u);
  OdDbXrecordPtr flags = dict->getAt(L"AcStFlags", OdDb::kForRead);
  OdResBufPtr chain = flags->rbChain();
  EXPECT_EQ(chain->restype(), 90);
  EXPECT_EQ(chain->next()->restype(), 300);
}

TEST(IgnoreMarks, ErasingLeavesAnExtensionDictionaryAndAnEmptyStandardsDictionaryCounts) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  const OdDbObjectId text = addText(*db, L"note");
  const OdDbObjectId plain = addText(*db, L"never marked");
  ASSERT_TRUE(st::writeObjectIgnoredMark(text, st::getLogin()));
  EXPECT_FALSE(st::getLogin().isEmpty());
  EXPECT_EQ(st::getObjectIgnoredBy(text), st::getLogin());

  for (const OdDbObjectId& id : {text, plain}) {
    st::eraseObjectIgnoredMark(id);
    EXPECT_FALSE(st::hasObjectIgnoredMark(id));
    OdDbObjectPtr object = id.safeOpenObject();
    ASSERT_FALSE(object->extensionDictionary().isNull());
    OdDbDictionaryPtr ext = object->extensionDictionary().safeOpenObject();
    EXPECT_EQ(ext->numEntries(), 0u);
  }

  // A standards dictionary without AcStFlags is a mark with nobody's name in it.
  {
    OdDbObjectPtr object = plain.safeOpenObject();
    OdDbDictionaryPtr ext = object->extensionDictionary().safeOpenObject(OdDb::kForWrite);
    OdDbDictionaryPtr empty = OdDbDictionary::createObject();
    ext->setAt(L"AcStStandard", empty.get());
  }
  EXPECT_TRUE(st::hasObjectIgnoredMark(plain));
  EXPECT_TRUE(st::getObjectIgnoredBy(plain).isEmpty());

  EXPECT_FALSE(st::hasObjectIgnoredMark(OdDbObjectId()));
  EXPECT_TRUE(st::getObjectStFlagsDictionary(OdDbObjectId()).isNull());
  EXPECT_FALSE(st::writeObjectIgnoredMark(OdDbObjectId(), L"x"));
}

TEST(Proxies, SnapshotsSkipErasedRecordsAndDoNotFollowLaterAdditions) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  const OdDbObjectId walls = drawingtest::addLayer(*db, L"Walls", 1);
  const OdDbObjectId doors = drawingtest::addLayer(*db, L"Doors", 2);
  const OdDbObjectId first = addText(*db, L"first");
  const OdDbObjectId second = addText(*db, L"second");
  walls.safeOpenObject(OdDb::kForWrite)->erase();
  first.safeOpenObject(OdDb::kForWrite)->erase();

  OdSmartPtr<st::StTableProxyImpl> table = OdRxObjectImpl<st::StTableProxyImpl>::createObject();
  ASSERT_TRUE(table->fill(db->getLayerTableId()));
  OdSmartPtr<st::StBlockProxyImpl> block = OdRxObjectImpl<st::StBlockProxyImpl>::createObject();
  ASSERT_TRUE(block->fill(db->getModelSpaceId()));
  drawingtest::addLayer(*db, L"Later", 4);
  addText(*db, L"later");

  ASSERT_EQ(table->count(), 2u);
  EXPECT_EQ(table->getAt(0), db->getLayerZeroId());
  EXPECT_EQ(table->getAt(1), doors);
  ASSERT_EQ(block->count(), 1u);
  EXPECT_EQ(block->getAt(0), second);
  EXPECT_THROW(table->getAt(2), OdError_InvalidIndex);
  EXPECT_THROW(block->getAt(1), OdError_InvalidIndex);

  OdSmartPtr<st::StTableProxyImpl> none = OdRxObjectImpl<st::StTableProxyImpl>::createObject();
  EXPECT_FALSE(none->fill(OdDbObjectId()));
  EXPECT_EQ(none->count(), 0u);
  EXPECT_THROW(none->getAt(0), OdError_InvalidIndex);
  EXPECT_THROW(none->fill(db->getModelSpaceId()), OdError_NotThatKindOfClass);
  EXPECT_FALSE(block->fill(OdDbObjectId()));

  // The manager hands out a proxy only for a table that opens: none for an erased one.
  st::StManagerPtr manager = st::StManager::createObject();
  ASSERT_TRUE(manager->getTableProxy(db->getLinetypeTableId()));
  EXPECT_FALSE(manager->getTableProxy(OdDbObjectId()));
  db->getLinetypeTableId().safeOpenObject(OdDb::kForWrite)->erase();
  EXPECT_FALSE(manager->getTableProxy(db->getLinetypeTableId()));
  EXPECT_FALSE(none->fill(db->getLinetypeTableId()));
  EXPECT_EQ(none->count(), 0u);
}

TEST(Proxies, RegisterUnderTheirOwnNames) {
  st::StTableProxy::rxInit();
  st::StBlockProxy::rxInit();
  OdRxObjectPtr table = odrxCreateObject(L"StTableProxy");
  OdRxObjectPtr block = odrxCreateObject(L"StBlockProxy");
  EXPECT_TRUE(st::StTableProxy::cast(table.get()));
  EXPECT_FALSE(st::StTableProxy::cast(block.get()));
  EXPECT_EQ(st::StBlockProxy::cast(block.get())->count(), 0u);
  table.release();
  block.release();
  st::StBlockProxy::rxUninit();
  st::StTableProxy::rxUninit();
  EXPECT_EQ(st::StTableProxy::desc(), nullptr);
}

}  // namespace
