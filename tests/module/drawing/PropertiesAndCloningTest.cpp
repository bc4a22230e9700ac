// Property values as a user reads and compares them, record lookups, and records copied from
// a standards drawing into a checked drawing.

#include <gtest/gtest.h>

#include <cmath>

#include "DrawingTestSupport.h"
#include "HeadlessHost.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "StLayerProperties.h"
#include "StRecordCloning.h"
#include "StRecordLookup.h"
#include "StVariantText.h"

namespace {

std::string text(const OdVariant& v) {
  return st::odVariantToString(v).toUtf8();
}

TEST(PropertyValues, TextsAreWhatAUserReads) {
  EXPECT_EQ(st::lineWeightToString(OdDb::kLnWtByLayer).toUtf8(), "ByLayer");
  EXPECT_EQ(st::lineWeightToString(OdDb::kLnWtByBlock).toUtf8(), "ByBlock");
  EXPECT_EQ(st::lineWeightToString(OdDb::kLnWtByLnDefault).toUtf8(), "ByDefault");
  EXPECT_EQ(st::lineWeightToString(OdDb::kLnWt000).toUtf8(), "0.00");
  EXPECT_EQ(st::lineWeightToString(OdDb::kLnWt025).toUtf8(), "0.25");
  EXPECT_EQ(st::lineWeightToString(OdDb::kLnWt211).toUtf8(), "2.11");

  EXPECT_EQ(text(OdVariant()), "");
  EXPECT_EQ(text(OdVariant(true)), "Yes");
  EXPECT_EQ(text(OdVariant(false)), "No");
  EXPECT_EQ(text(OdVariant(static_cast<std::int16_t>(-7))), "-7");
  EXPECT_EQ(text(OdVariant(static_cast<std::uint32_t>(4294967295u))), "-1");
  EXPECT_EQ(text(OdVariant(static_cast<long long>(5000000000LL))), "5000000000");
  EXPECT_EQ(text(OdVariant(OdString(L"Ébauche"))), "Ébauche");
  EXPECT_EQ(text(OdVariant(OdAnsiString("Plan"))), "Plan");
  EXPECT_EQ(text(OdVariant(0.25)), "0.2500");  // no host: four places
  EXPECT_EQ(text(OdVariant(INFINITY)), "inf");
  EXPECT_EQ(text(OdVariant(static_cast<OdRxObject*>(nullptr))), "");
  EXPECT_EQ(st::lineTypeToString(OdDbObjectId()), OdString());

  EXPECT_EQ(st::getFileName(L"C:\\std\\Office.dws", false).toUtf8(), "Office");
  EXPECT_EQ(st::getFileName(L"C:\\std\\Office.dws", true).toUtf8(), "Office.dws");
  EXPECT_EQ(st::getFileName(L"/srv/std/dws.dws", false).toUtf8(), "dws");
  EXPECT_EQ(st::getFileName(L"/srv/std/mydws.v2.dws", false).toUtf8(), "mydws.v2");
  EXPECT_EQ(st::getFileName(L"README", false).toUtf8(), "README");
}

TEST(PropertyValues, RealsFollowTheCurrentDrawingsPrecisionWhenAHostRuns) {
  testsupport::TempDir dir;
  const auto file = dir.path() / "two-places.dxf";
  auto made = drawingtest::ezdxf(
      "doc = ezdxf.new('R2010')\ndoc.header['$LUPREC'] = 2\ndoc.saveas(path)\n", file);
  ASSERT_EQ(made.exitCode, 0) << made.output;
  HeadlessHost host(HeadlessHost::Options{dir.path() / "config.json", nullptr});
  EXPECT_EQ(text(OdVariant(0.25)), "0.2500");  // no drawing open yet
  host.openDrawing(file);
  EXPECT_EQ(text(OdVariant(0.256)), "0.26");
  EXPECT_EQ(text(OdVariant(NAN)), "nan");  // refused by the host, written plainly
}

TEST(PropertyValues, ComparisonNeedsTheSameTypeAndIgnoresCase) {
  auto same = [](const OdVariant& a, const OdVariant& b) { return st::compareOdVariant(a, b); };
  EXPECT_TRUE(same(OdString(L"Layer1"), OdString(L"LAYER1")));
  EXPECT_TRUE(same(OdString(L"Ébauche"), OdString(L"ÉBAUCHE")));
  EXPECT_FALSE(same(OdString(L"Ébauche"), OdString(L"Ebauche")));
  EXPECT_TRUE(same(OdAnsiString("Plan"), OdAnsiString("PLAN")));
  EXPECT_FALSE(same(static_cast<std::int16_t>(7), static_cast<std::int32_t>(7)));
  EXPECT_TRUE(same(static_cast<std::int16_t>(7), static_cast<std::int16_t>(7)));
  EXPECT_FALSE(same(0.25, 0.2500001));
  EXPECT_TRUE(same(NAN, NAN));
  EXPECT_FALSE(same(OdVariant(), OdVariant()));
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  EXPECT_TRUE(same(OdRxObjectPtr(db), OdRxObjectPtr(db)));
}

TEST(RecordCloning, ALayerKeepsTheTargetsPropertiesALinetypeReplacesThem) {
  testsupport::TempDir dir;
  OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  drawingtest::addLinetype(*standard, L"Dashed", L"standard dashes", {0.5, -0.25});
  drawingtest::addLinetype(*drawing, L"DASHED", L"home-made", {2.0, -1.0});
  drawingtest::addLayer(*standard, L"Walls", 1, OdDb::kLnWt050);
  const OdDbObjectId walls = drawingtest::addLayer(*drawing, L"WALLS", 5, OdDb::kLnWt025);
  drawingtest::addLayer(*standard, L"Ébauche", 3);

  OdDbObjectId layerId, linetypeId, newLayerId;
  EXPECT_EQ(st::stCloneLayerTableRecord(drawing.get(), standard.get(), L"Walls", layerId), eOk);
  EXPECT_EQ(layerId, walls);
  EXPECT_EQ(st::stCloneLinetypeTableRecord(drawing.get(), standard.get(), L"Dashed", linetypeId),
            eOk);
  EXPECT_EQ(st::stCloneLayerTableRecord(drawing.get(), standard.get(), L"ÉBAUCHE", newLayerId),
            eOk);
  const OdDbHandle linetypeHandle = linetypeId.getHandle();

  OdDbDatabasePtr reread = drawingtest::saveAndReload(*drawing, dir.path() / "fixed.dxf");
  const OdDbObjectId layers = reread->getLayerTableId();
  ASSERT_TRUE(st::hasRecord(layers, L"walls"));
  OdDbLayerTableRecordPtr layer = st::getRecord(layers, L"Walls").safeOpenObject();
  EXPECT_EQ(text(st::layerColorToOdVariant(layer.get())), "5");
  EXPECT_EQ(st::layerLineWeightToOdVariant(layer.get()).getUInt32(), 25u);
  EXPECT_EQ(text(st::layerLineTypeToOdVariant(layer.get())), "Continuous");
  OdDbLayerTableRecordPtr added = st::getRecord(layers, L"Ébauche").safeOpenObject();
  EXPECT_EQ(text(st::layerNameToOdVariant(added.get())), "Ébauche");
  EXPECT_EQ(st::layerLineWeightToOdVariant(added.get()).getInt32(), OdDb::kLnWtByLnDefault);

  OdDbLinetypeTableRecordPtr linetype = reread->getOdDbObjectId(linetypeHandle).safeOpenObject();
  EXPECT_EQ(linetype->comments().toUtf8(), "standard dashes");
  EXPECT_EQ(linetype->dashes(), (std::vector<double>{0.5, -0.25}));
  EXPECT_FALSE(st::isFromExternalReference(linetype->objectId()));
  EXPECT_FALSE(st::isFromExternalReference(reread->getModelSpaceId()));
  EXPECT_FALSE(st::hasRecord(OdDbObjectId(), L"Walls"));
  EXPECT_TRUE(st::getRecord(layers, L"Roof").isNull());
}

TEST(RecordCloning, FailuresAreResultCodes) {
  OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  OdDbObjectId id;
  EXPECT_EQ(st::stCloneLayerTableRecord(nullptr, standard.get(), L"0", id), eNullPtr);
  EXPECT_EQ(st::stCloneLinetypeTableRecord(drawing.get(), nullptr, L"0", id), eNullPtr);
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(st::stCloneTextStyleTableRecord(drawing.get(), drawing.get(), L"Standard", id),
              eWrongDatabase);
  EXPECT_EQ(st::stCloneLayerTableRecord(drawing.get(), standard.get(), L"Missing", id),
            eCloneFailed);
  EXPECT_TRUE(id.isNull());
  EXPECT_EQ(st::stCloneTextStyleTableRecord(drawing.get(), standard.get(), L"standard", id), eOk);
  OdDbTextStyleTablePtr styles = drawing->getTextStyleTableId().safeOpenObject();
  EXPECT_EQ(id, styles->getAt(L"Standard"));
}

}  // namespace
