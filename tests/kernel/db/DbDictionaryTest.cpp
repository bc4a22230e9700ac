// Dictionaries, xrecords and extension dictionaries: what the module stores in a drawing
// survives saving and reloading, and ezdxf reads it.

#include <gtest/gtest.h>

#include "DbTestSupport.h"
#include "OdDbDictionary.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbXrecord.h"
#include "OdError.h"

namespace {

// Stores `paths` as the module stores a drawing's standards files: a dictionary under
// "AcStStandard" in the named-object dictionary, one xrecord per file under "0", "1", ...
void writeList(OdDbDatabase& db, const std::vector<std::wstring>& paths) {
  OdDbDictionaryPtr nod = db.getNamedObjectsDictionaryId().safeOpenObject(OdDb::kForWrite);
  OdDbDictionaryPtr list = nod->getAt(L"AcStStandard", OdDb::kForWrite);
  if (!list) {
    list = OdDbDictionary::createObject();
    nod->setAt(L"AcStStandard", list.get());
  }
  for (std::uint32_t i = 0, n = list->numEntries(); i < n; ++i)
    list->remove(OdString::format(L"%d", static_cast<int>(i)));
  for (std::size_t i = 0; i < paths.size(); ++i) {
    OdDbXrecordPtr rec = OdDbXrecord::createObject();
    rec->setFromRbChain(OdResBuf::newRb(1, OdString(paths[i])).get());
    list->setAt(OdString::format(L"%d", static_cast<int>(i)), rec.get());
  }
}

std::vector<std::wstring> readList(OdDbDatabase& db) {
  std::vector<std::wstring> paths;
  OdDbDictionaryPtr nod = db.getNamedObjectsDictionaryId().safeOpenObject();
  OdDbDictionaryPtr list = nod->getAt(L"AcStStandard", OdDb::kForRead);
  if (!list) return paths;
  for (std::uint32_t i = 0; i < list->numEntries(); ++i) {
    OdDbXrecordPtr rec = list->getAt(OdString::format(L"%d", static_cast<int>(i)), OdDb::kForRead);
    OdResBufPtr rb = rec ? rec->rbChain() : OdResBufPtr();
    if (rb && rb->restype() == 1) paths.push_back(rb->getString().str());
  }
  return paths;
}

TEST(DbDictionary, AnXrecordListInTheNamedObjectDictionarySurvivesSaveAndEzdxfReadsIt) {
  for (const char* name : {"", "r2004_libredwg_example.dxf", "bin_r2000_acsharp_sample.dxf"}) {
    SCOPED_TRACE(*name ? name : "new drawing");
    OdDbDatabasePtr db;
    if (*name) {
      auto path = dbtest::corpusFile(name);
      if (path.empty()) GTEST_SKIP() << "the shared corpus is absent";
      db = OdDbDatabase::readFile(path);
    } else {
      db = OdDbDatabase::createEmpty();
    }
    writeList(*db, {L"/std/Office.dws", L"/std/Übung ß.dws", L"/std/third.dws"});
    writeList(*db, {L"/std/Office.dws", L"/std/Übung ß.dws"});

    testsupport::TempDir dir;
    const auto file = dir.path() / "standards.dxf";
    db->writeFile(file);
    OdDbDatabasePtr reread = OdDbDatabase::readFile(file);
    EXPECT_EQ(readList(*reread),
              (std::vector<std::wstring>{L"/std/Office.dws", L"/std/Übung ß.dws"}));

    auto result = dbtest::ezdxf(
        "doc = ezdxf.readfile(path)\n"
        "d = doc.rootdict['AcStStandard']\n"
        "print(sorted(d.keys()), [d[k].tags[0] for k in sorted(d.keys())])\n"
        "a = doc.audit()\n"
        "print('errors', len(a.errors))\n",
        file);
    ASSERT_EQ(result.exitCode, 0) << result.output;
    EXPECT_NE(result.output.find("['0', '1'] [DXFTag(1, '/std/Office.dws'), DXFTag(1, '/std/Übung "
                                 "ß.dws')]"),
              std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("errors 0"), std::string::npos) << result.output;
  }
}

TEST(DbDictionary, EntriesKeepStoredOrderAndKeysIgnoreCase) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbDictionaryPtr nod = db->getNamedObjectsDictionaryId().safeOpenObject(OdDb::kForWrite);
  std::vector<std::string> keys;
  for (OdDbDictionaryIteratorPtr it = nod->newIterator(); !it->done(); it->next())
    keys.push_back(it->name().toUtf8());
  EXPECT_EQ(keys, (std::vector<std::string>{"ACAD_GROUP", "ACAD_LAYOUT", "ACAD_PLOTSTYLENAME"}));
  EXPECT_TRUE(nod->has(L"acad_layout"));
  OdDbObjectId id = nod->setAt(L"Zeta", OdDbXrecord::createObject().get());
  EXPECT_EQ(nod->numEntries(), 4u);
  EXPECT_EQ(nod->nameAt(id), OdString(L"Zeta"));
  EXPECT_EQ(nod->remove(L"ZETA"), id);
  EXPECT_TRUE(id.isErased()) << "the dictionary owns its entries";
  EXPECT_TRUE(nod->getAt(L"Zeta").isNull());
  EXPECT_THROW(nod->setAt(L"", OdDbXrecord::createObject().get()), OdError);
  OdDbDatabasePtr other = OdDbDatabase::createEmpty();
  OdDbObjectPtr foreign = other->getLayerZeroId().safeOpenObject();
  EXPECT_THROW(nod->setAt(L"foreign", foreign.get()), OdError);
}

TEST(DbDictionary, AnExtensionDictionaryOnALayerIsWrittenWithIts102GroupAndReadBack) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbObjectId zero = db->getLayerZeroId();
  {
    OdDbLayerTableRecordPtr layer = zero.safeOpenObject(OdDb::kForWrite);
    EXPECT_TRUE(layer->extensionDictionary().isNull());
    layer->createExtensionDictionary();
    OdDbDictionaryPtr xdict = layer->extensionDictionary().safeOpenObject(OdDb::kForWrite);
    EXPECT_EQ(xdict->ownerId(), zero);
    OdDbDictionaryPtr marks = OdDbDictionary::createObject();
    xdict->setAt(L"AcStStandard", marks.get());
    OdDbXrecordPtr flags = OdDbXrecord::createObject();
    OdResBufPtr chain = OdResBuf::newRb(90, 1);
    chain->setNext(OdResBuf::newRb(300, L"jane").get());
    flags->setFromRbChain(chain.get());
    marks->setAt(L"AcStFlags", flags.get());
  }
  testsupport::TempDir dir;
  const auto file = dir.path() / "marked.dxf";
  db->writeFile(file);

  OdDbDatabasePtr reread = OdDbDatabase::readFile(file);
  OdDbLayerTableRecordPtr layer = reread->getLayerZeroId().safeOpenObject();
  ASSERT_FALSE(layer->extensionDictionary().isNull());
  OdDbDictionaryPtr xdict = layer->extensionDictionary().safeOpenObject();
  OdDbDictionaryPtr marks = xdict->getAt(L"AcStStandard", OdDb::kForRead);
  ASSERT_TRUE(marks);
  OdDbXrecordPtr flags = marks->getAt(L"AcStFlags", OdDb::kForRead);
  ASSERT_TRUE(flags);
  OdResBufPtr rb = flags->rbChain();
  ASSERT_TRUE(rb);
  EXPECT_EQ(rb->restype(), 90);
  EXPECT_EQ(rb->getInt32(), 1);
  ASSERT_TRUE(rb->next());
  EXPECT_EQ(rb->next()->getString(), OdString(L"jane"));
  EXPECT_THROW(rb->getString(), OdError) << "an integer buffer holds no text";

  auto result = dbtest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "layer = doc.layers.get('0')\n"
      "x = layer.get_extension_dict()\n"
      "print(x['AcStStandard']['AcStFlags'].tags)\n"
      "print('errors', len(doc.audit().errors))\n",
      file);
  ASSERT_EQ(result.exitCode, 0) << result.output;
  EXPECT_NE(result.output.find("[DXFTag(90, 1), DXFTag(300, 'jane')]"), std::string::npos)
      << result.output;
  EXPECT_NE(result.output.find("errors 0"), std::string::npos) << result.output;
}

TEST(DbDictionary, AReleaseTwelveDrawingHasNoNamedObjectDictionary) {
  auto path = dbtest::corpusFile("r12_dxflib_demo_german_block_names.dxf");
  if (path.empty()) GTEST_SKIP() << "the shared corpus is absent";
  OdDbDatabasePtr db = OdDbDatabase::readFile(path);
  EXPECT_TRUE(db->getNamedObjectsDictionaryId().isNull());
  OdDbLayerTableRecordPtr layer = db->getLayerZeroId().safeOpenObject(OdDb::kForWrite);
  EXPECT_THROW(layer->createExtensionDictionary(), OdError);
}

}  // namespace
