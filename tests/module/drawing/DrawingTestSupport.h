#pragma once

// What the tests of the module's drawing data share: drawings saved and read back through
// real files, ezdxf run on them, and records made with the kernel.

#include <filesystem>
#include <string>

#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdDbLinetypeTableRecord.h"
#include "TestSupport.h"

namespace drawingtest {

// Saves `db` to `file` and reads the file back.
inline OdDbDatabasePtr saveAndReload(OdDbDatabase& db, const std::filesystem::path& file) {
  db.writeFile(file);
  return OdDbDatabase::readFile(file);
}

// Runs a python snippet with ezdxf; the snippet sees the file as `path`.
inline testsupport::ProcessResult ezdxf(const std::string& snippet,
                                        const std::filesystem::path& file) {
  std::string script = "import sys, ezdxf\npath = sys.argv[1]\n" + snippet;
  return testsupport::runCommand(std::string(STAUDIT_PYTHON) + " -c " +
                                 testsupport::shellQuote(script) + " " +
                                 testsupport::shellQuote(file.string()));
}

inline OdDbObjectId addLinetype(OdDbDatabase& db, const wchar_t* name, const wchar_t* comments,
                                std::vector<double> dashes) {
  OdDbLinetypeTablePtr table = db.getLinetypeTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLinetypeTableRecordPtr linetype = OdDbLinetypeTableRecord::createObject();
  linetype->setName(name);
  linetype->setComments(comments);
  linetype->setDashes(dashes);
  return table->add(linetype.get());
}

inline OdDbObjectId addLayer(OdDbDatabase& db, const wchar_t* name, short color,
                             OdDb::LineWeight weight = OdDb::kLnWtByLnDefault) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  OdDbObjectId id = table->add(layer.get());
  layer->setColorIndex(color);
  layer->setLineWeight(weight);
  return id;
}

}  // namespace drawingtest
