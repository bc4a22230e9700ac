// Copying records from a standards drawing into a checked drawing, also into a drawing of an
// older release, which gets only what its release stores.

#include <gtest/gtest.h>

#include "DbTestSupport.h"
#include "OdDbDimStyleTable.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdDbLinetypeTableRecord.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdError.h"

namespace {

OdDbObjectId addLinetype(OdDbDatabase& db, const wchar_t* name, std::vector<double> dashes) {
  OdDbLinetypeTablePtr table = db.getLinetypeTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLinetypeTableRecordPtr ltype = OdDbLinetypeTableRecord::createObject();
  ltype->setName(name);
  ltype->setComments(L"dashes");
  ltype->setDashes(dashes);
  return table->add(ltype.get());
}

OdDbObjectId addLayer(OdDbDatabase& db, const wchar_t* name, short color,
                      const OdDbObjectId& linetype) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  OdDbObjectId id = table->add(layer.get());
  layer->setColorIndex(color);
  if (!linetype.isNull()) layer->setLinetypeObjectId(linetype);
  return id;
}

OdDbObjectId cloneOne(OdDbDatabase& from, const OdDbObjectId& id, const OdDbObjectId& table,
                      OdDb::DuplicateRecordCloning drc) {
  OdDbObjectIdArray ids;
  ids.append(id);
  OdDbIdMapping map;
  from.wblockCloneObjects(ids, table, map, drc, false);
  OdDbIdPair pair(id);
  EXPECT_TRUE(map.compute(pair));
  EXPECT_EQ(map.destDb(), table.database());
  return pair.value;
}

TEST(DbClone, IgnoreKeepsTheTargetsLayerAndReplaceOverwritesALinetype) {
  OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  OdDbObjectId stdDashed = addLinetype(*standard, L"Dashed", {5.0, -2.5});
  OdDbObjectId stdWalls = addLayer(*standard, L"Walls", 1, stdDashed);
  OdDbObjectId stdDoors = addLayer(*standard, L"Doors", 3, stdDashed);
  OdDbObjectId myWalls = addLayer(*drawing, L"WALLS", 5, OdDbObjectId());
  OdDbObjectId myDashed = addLinetype(*drawing, L"dashed", {1.0, -1.0, 0.0, -1.0});

  // Ignore: the drawing's layer of that name is kept as it is.
  EXPECT_EQ(cloneOne(*standard, stdWalls, drawing->getLayerTableId(), OdDb::kDrcIgnore), myWalls);
  EXPECT_EQ(OdDbLayerTableRecordPtr(myWalls.safeOpenObject())->colorIndex(), 5);

  // A layer the drawing lacks is copied with its linetype, which maps by name.
  OdDbObjectId doors = cloneOne(*standard, stdDoors, drawing->getLayerTableId(), OdDb::kDrcIgnore);
  ASSERT_FALSE(doors.isNull());
  EXPECT_EQ(doors.database(), drawing.get());
  OdDbLayerTableRecordPtr doorsLayer = doors.safeOpenObject();
  EXPECT_EQ(doorsLayer->getName(), OdString(L"Doors"));
  EXPECT_EQ(doorsLayer->colorIndex(), 3);
  EXPECT_EQ(doorsLayer->linetypeObjectId(), myDashed);
  EXPECT_EQ(doorsLayer->ownerId(), drawing->getLayerTableId());

  // Replace: the drawing's linetype takes the standard's pattern, keeping its handle and the
  // spelling of its name.
  OdDbHandle handle = myDashed.getHandle();
  EXPECT_EQ(cloneOne(*standard, stdDashed, drawing->getLinetypeTableId(), OdDb::kDrcReplace),
            myDashed);
  OdDbLinetypeTableRecordPtr dashed = myDashed.safeOpenObject();
  EXPECT_EQ(dashed->dashes(), (std::vector<double>{5.0, -2.5}));
  EXPECT_EQ(dashed->getName().toUtf8(), "dashed");
  EXPECT_EQ(dashed->getDbHandle(), handle);

  // A layer whose linetype the drawing lacks brings the linetype along.
  OdDbObjectId stdCenter = addLinetype(*standard, L"Center", {10.0, -2.0, 2.0, -2.0});
  OdDbObjectId stdAxes = addLayer(*standard, L"Axes", 2, stdCenter);
  OdDbObjectId axes = cloneOne(*standard, stdAxes, drawing->getLayerTableId(), OdDb::kDrcIgnore);
  OdDbObjectId center = OdDbLayerTableRecordPtr(axes.safeOpenObject())->linetypeObjectId();
  ASSERT_FALSE(center.isNull());
  EXPECT_EQ(center.database(), drawing.get());

  EXPECT_THROW(cloneOne(*standard, stdWalls, standard->getLayerTableId(), OdDb::kDrcIgnore),
               OdError)
      << "source and target must differ";
  OdDbIdMapping map;
  OdDbObjectIdArray wrongKind;
  wrongKind.append(stdDashed);
  EXPECT_THROW(
      standard->wblockCloneObjects(wrongKind, drawing->getLayerTableId(), map, OdDb::kDrcIgnore),
      OdError);

  testsupport::TempDir dir;
  drawing->writeFile(dir.path() / "cloned.dxf");
  auto result = dbtest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "print(sorted(l.dxf.name for l in doc.layers), doc.layers.get('Axes').dxf.linetype)\n"
      "print(doc.linetypes.get('dashed').dxf.description)\n"
      "a = doc.audit()\n"
      "print('errors', len(a.errors), [e.message for e in a.errors])\n",
      dir.path() / "cloned.dxf");
  ASSERT_EQ(result.exitCode, 0) << result.output;
  EXPECT_NE(result.output.find("['0', 'Axes', 'Defpoints', 'Doors', 'WALLS'] Center"),
            std::string::npos)
      << result.output;
  EXPECT_NE(result.output.find("errors 0"), std::string::npos) << result.output;
}

TEST(DbClone, TextStylesFromARealStandardsDrawing) {
  auto path = dbtest::corpusFile("r2018_ezdxf_issue1359_19styles.dxf");
  if (path.empty()) GTEST_SKIP() << "the shared corpus is absent";
  OdDbDatabasePtr standard = OdDbDatabase::readFile(path);
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  OdDbTextStyleTablePtr styles = standard->getTextStyleTableId().safeOpenObject();
  int cloned = 0;
  for (OdDbSymbolTableIteratorPtr it = styles->newIterator(); !it->done(); it->step()) {
    OdDbTextStyleTableRecordPtr style = it->getRecord();
    if (style->getName().isEmpty()) continue;  // a shape file's unnamed style
    OdDbObjectId id =
        cloneOne(*standard, it->getRecordId(), drawing->getTextStyleTableId(), OdDb::kDrcReplace);
    OdDbTextStyleTableRecordPtr copy = id.safeOpenObject();
    EXPECT_EQ(copy->getName(), style->getName());
    EXPECT_EQ(copy->fileName(), style->fileName());
    EXPECT_DOUBLE_EQ(copy->xScale(), style->xScale());
    ++cloned;
  }
  EXPECT_GT(cloned, 5);
  testsupport::TempDir dir;
  drawing->writeFile(dir.path() / "styles.dxf");
  auto result = dbtest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "print(len(doc.styles), 'errors', len(doc.audit().errors))\n",
      dir.path() / "styles.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_NE(result.output.find("errors 0"), std::string::npos) << result.output;
}

// Dimension styles of a real R2018 drawing (a text fill colour in the group 70 after the
// flags, linetypes and lineweights of later releases) copied into R12 and R2000 drawings.
TEST(DbClone, DimensionStylesIntoOlderReleasesKeepOnlyWhatTheyStore) {
  auto source = dbtest::corpusFile("r2018_acsharp_sample_ascii.dxf");
  if (source.empty()) GTEST_SKIP() << "the shared corpus is absent";
  OdDbDatabasePtr standard = OdDbDatabase::readFile(source);
  OdDbDimStyleTablePtr styles = standard->getDimStyleTableId().safeOpenObject();
  const OdDbObjectId fill = styles->getAt(L"custom_dim_style");
  const OdDbObjectId lines = styles->getAt(L"custom_style_ltypes");
  {
    OdDbDimStyleTableRecordPtr style = fill.safeOpenObject(OdDb::kForWrite);
    EXPECT_EQ(style->flags(), 0);
    EXPECT_EQ(style->getDimVar(L"DIMTFILL")->getInt16(), 2);
    EXPECT_EQ(style->getDimVar(L"DIMTFILLCLR")->getInt16(), 97);
    style->setDimVar(OdResBuf::newRb(70, 5).get());
    EXPECT_EQ(style->getDimVar(L"DIMTFILLCLR")->getInt16(), 5);
    EXPECT_EQ(style->flags(), 0) << "the flags are not the fill colour";
    EXPECT_TRUE(style->getDimVar(L"DIMASZ").isNull());
    EXPECT_DOUBLE_EQ(OdDbDimStyleTableRecord::dimVarDefault(41)->getDouble(), 0.18);
  }
  const struct {
    const char* file;
    int version;
  } targets[] = {{"r12_acsharp_sample_ascii.dxf", 1009}, {"r2000_ezdxf_mtext_columns.dxf", 1015}};
  testsupport::TempDir dir;
  for (const auto& target : targets) {
    OdDbDatabasePtr drawing = OdDbDatabase::readFile(dbtest::corpusFile(target.file));
    ASSERT_EQ(drawing->versionNumber(), target.version);
    for (const OdDbObjectId& id : {fill, lines}) {
      OdDbDimStyleTableRecordPtr copy =
          cloneOne(*standard, id, drawing->getDimStyleTableId(), OdDb::kDrcIgnore).safeOpenObject();
      EXPECT_FALSE(copy->getDimVar(L"DIMCLRD").isNull()) << "every release stores it";
      for (int code : OdDbDimStyleTableRecord::dimVarCodes())
        EXPECT_TRUE(copy->getDimVar(code).isNull() ||
                    OdDbDimStyleTableRecord::isDimVarHeldBy(code, target.version))
            << target.file << ": " << copy->getName().toUtf8() << " keeps group " << code;
    }
    const auto saved = dir.path() / target.file;
    drawing->writeFile(saved);
    auto result = dbtest::ezdxf(
        "doc = ezdxf.readfile(path)\n"
        "s = doc.dimstyles.get('custom_dim_style')\n"
        "print(doc.dxfversion, s.dxf.dimclrd, s.dxf.dimclre, s.dxf.dimclrt)\n",
        saved);
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_EQ(result.output,
              (target.version == 1009 ? "AC1009" : "AC1015") + std::string(" 86 183 151\n"));
  }
}

}  // namespace
