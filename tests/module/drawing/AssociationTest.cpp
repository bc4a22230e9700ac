// The list of standards files a drawing carries: what we write survives saving and ezdxf
// reads it, what ezdxf writes we read, and the position-key reading keeps its known gaps.

#include <gtest/gtest.h>

#include "DrawingTestSupport.h"
#include "OdDbDictionary.h"
#include "OdDbXrecord.h"
#include "OdError.h"
#include "StAttachedStandards.h"
#include "StDbReaderWriter.h"

namespace {

using Files = OdArray<OdString>;

std::vector<std::string> utf8(const Files& files) {
  std::vector<std::string> out;
  for (const OdString& f : files) out.push_back(f.toUtf8());
  return out;
}

st::StDbReaderWriterPtr readerWriter(OdDbDatabase* db) {
  st::StDbReaderWriterPtr rw = st::StDbReaderWriter::createObject();
  EXPECT_TRUE(rw->setDatabase(db));
  return rw;
}

OdDbDictionaryPtr standardsList(OdDbDatabase& db) {
  OdDbDictionaryPtr nod = db.getNamedObjectsDictionaryId().safeOpenObject(OdDb::kForWrite);
  return nod->getAt(L"AcStStandard", OdDb::kForWrite);
}

TEST(Association, ThreePathsThenTwoLeaveEntriesZeroAndOneAfterSaveAndEzdxfReadsThem) {
  testsupport::TempDir dir;
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  auto rw = readerWriter(db.get());
  ASSERT_TRUE(rw->writeStandardFiles(Files{L"/std/a.dws", L"/std/b.dws", L"/std/c.dws"}));
  const OdDbObjectId zero = standardsList(*db)->getAt(L"0");
  const OdDbObjectId one = standardsList(*db)->getAt(L"1");
  const OdDbObjectId two = standardsList(*db)->getAt(L"2");
  ASSERT_TRUE(rw->writeStandardFiles(Files{L"/std/Office.dws", L"/std/Übung ß.dws"}));
  // Entries are rewritten in place, keeping their handles; only the one past the end goes.
  EXPECT_EQ(standardsList(*db)->getAt(L"0"), zero);
  EXPECT_EQ(standardsList(*db)->getAt(L"1"), one);
  EXPECT_TRUE(two.isErased());
  const auto file = dir.path() / "drawing.dxf";
  OdDbDatabasePtr reread = drawingtest::saveAndReload(*db, file);

  Files files{L"kept"};
  ASSERT_TRUE(readerWriter(reread.get())->readStandardFiles(files));
  EXPECT_EQ(utf8(files), (std::vector<std::string>{"kept", "/std/Office.dws", "/std/Übung ß.dws"}));
  EXPECT_EQ(standardsList(*reread)->numEntries(), 2u);
  EXPECT_TRUE(stIsDatabaseHasAttachedStandards(reread.get()));

  auto result = drawingtest::ezdxf(
      "d = ezdxf.readfile(path).rootdict['AcStStandard']\n"
      "print(d.dxftype(), sorted(d.keys()), [d[k].tags[0] for k in sorted(d.keys())])\n",
      file);
  ASSERT_EQ(result.exitCode, 0) << result.output;
  EXPECT_NE(result.output.find("DICTIONARY ['0', '1'] [DXFTag(1, '/std/Office.dws'), "
                               "DXFTag(1, '/std/Übung ß.dws')]"),
            std::string::npos)
      << result.output;
}

TEST(Association, AListThatEzdxfWroteIsReadInKeyOrder) {
  testsupport::TempDir dir;
  const auto file = dir.path() / "ezdxf.dxf";
  auto result = drawingtest::ezdxf(
      "doc = ezdxf.new('R2010')\n"
      "d = doc.rootdict.add_new_dict('AcStStandard')\n"
      "for key, p in (('1', 'C:\\\\std\\\\second.dws'), ('0', '/std/première.dws')):\n"
      "    x = d.add_xrecord(key)\n"
      "    x.reset([(1, p)])\n"
      "doc.saveas(path)\n",
      file);
  ASSERT_EQ(result.exitCode, 0) << result.output;
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  Files files;
  ASSERT_TRUE(readerWriter(db.get())->readStandardFiles(files));
  EXPECT_EQ(utf8(files), (std::vector<std::string>{"/std/première.dws", "C:\\std\\second.dws"}));
}

TEST(Association, GapsForeignKeysAndOtherBuffersAreSkipped) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  auto rw = readerWriter(db.get());
  ASSERT_TRUE(rw->writeStandardFiles(Files{L"/std/zero.dws"}));
  {
    OdDbDictionaryPtr list = standardsList(*db);
    OdDbXrecordPtr two = OdDbXrecord::createObject();
    two->setFromRbChain(OdResBuf::newRb(1, L"/std/two.dws").get());
    list->setAt(L"2", two.get());
  }
  // Keys "0" and "2": two entries, so only "0" and "1" are looked up.
  Files files;
  ASSERT_TRUE(rw->readStandardFiles(files));
  EXPECT_EQ(utf8(files), std::vector<std::string>{"/std/zero.dws"});

  // Rewriting removes "0" and "1" only; the entry under "2" stays in the drawing.
  ASSERT_TRUE(rw->writeStandardFiles(Files{L"/std/new.dws"}));
  EXPECT_TRUE(standardsList(*db)->has(L"2"));
  {
    OdDbXrecordPtr zero = standardsList(*db)->getAt(L"0", OdDb::kForWrite);
    OdResBufPtr chain = OdResBuf::newRb(70, 5);
    chain->setNext(OdResBuf::newRb(1, L"/std/hidden.dws").get());
    zero->setFromRbChain(chain.get());
  }
  files.clear();
  EXPECT_TRUE(rw->readStandardFiles(files));
  EXPECT_TRUE(files.isEmpty());
}

TEST(Association, AbsentEmptyAndMisusedLists) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbDatabasePtr other = OdDbDatabase::createEmpty();
  st::StDbReaderWriterPtr rw = st::StDbReaderWriter::createObject();
  Files files;
  EXPECT_FALSE(rw->readStandardFiles(files));  // no drawing set
  EXPECT_FALSE(rw->writeStandardFiles(files));
  EXPECT_FALSE(rw->setDatabase(nullptr));
  ASSERT_TRUE(rw->setDatabase(db.get()));
  EXPECT_FALSE(rw->setDatabase(nullptr));  // keeps db

  EXPECT_FALSE(rw->hasStandardsEntry());
  EXPECT_FALSE(rw->readStandardFiles(files));
  EXPECT_FALSE(stIsDatabaseHasAttachedStandards(db.get()));
  EXPECT_FALSE(stIsDatabaseHasAttachedStandards(nullptr));

  ASSERT_TRUE(rw->writeStandardFiles(Files{}));
  EXPECT_TRUE(rw->hasStandardsEntry());
  EXPECT_FALSE(rw->readStandardFiles(files));
  EXPECT_FALSE(stIsDatabaseHasAttachedStandards(db.get()));
  EXPECT_FALSE(readerWriter(other.get())->hasStandardsEntry());

  // "AcStStandard" of another class: the reader says so, the exported query answers false.
  OdDbDictionaryPtr nod = other->getNamedObjectsDictionaryId().safeOpenObject(OdDb::kForWrite);
  OdDbXrecordPtr wrong = OdDbXrecord::createObject();
  wrong->setFromRbChain(OdResBuf::newRb(1, L"/std/a.dws").get());
  nod->setAt(L"AcStStandard", wrong.get());
  nod.release();
  EXPECT_THROW(readerWriter(other.get())->readStandardFiles(files), OdError_NotThatKindOfClass);
  EXPECT_FALSE(stIsDatabaseHasAttachedStandards(other.get()));
}

}  // namespace
