#pragma once

// What the tests of the standard plug-ins share: the plug-in library loaded through the
// kernel's linker, drawings built with the kernel and read back from files, a check driven as
// the check manager drives a plug-in, and a comparison of two saved drawings object by object.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "DrawingBuilders.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbDimStyleTable.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdDbLinetypeTableRecord.h"
#include "OdDbText.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdError.h"
#include "OdResBuf.h"
#include "OdRxClass.h"
#include "OdRxDynamicLinker.h"
#include "StDWSPlugin.h"
#include "StError.h"
#include "StFix.h"
#include "TestSupport.h"

namespace plugintest {

// Registers the engine classes the plug-ins derive from (the module does it when a host loads
// it) and loads the plug-in library as the plug-in registry does.
inline void loadPlugins() {
  if (!st::StError::desc()) st::StError::rxInit();
  if (!st::StFix::desc()) st::StFix::rxInit();
  if (!st::StDWSPlugin::desc()) st::StDWSPlugin::rxInit();
  ASSERT_FALSE(odrxDynamicLinker()->loadModule(L"StStandardPlugins", false).isNull());
}

inline st::StDWSPluginPtr createPlugin(const wchar_t* className) {
  loadPlugins();
  return st::StDWSPluginPtr(odrxCreateObject(className));
}

using testsupport::addLayer;
using testsupport::addLinetype;
using testsupport::addText;
using testsupport::saveAndReload;

inline OdDbObjectId addTextStyle(OdDbDatabase& db, const wchar_t* name, const wchar_t* font,
                                 double height, double width) {
  OdDbTextStyleTablePtr table = db.getTextStyleTableId().safeOpenObject(OdDb::kForWrite);
  OdDbTextStyleTableRecordPtr style = OdDbTextStyleTableRecord::createObject();
  style->setName(name);
  OdDbObjectId id = table->add(style.get());
  style->setFileName(font);
  style->setTextSize(height);
  style->setXScale(width);
  return id;
}

// A dimension style with DIMSCALE, DIMCLRD and, when given, the text style it names.
inline OdDbObjectId addDimStyle(OdDbDatabase& db, const wchar_t* name, double scale, int color,
                                const wchar_t* textStyle = nullptr) {
  OdDbDimStyleTablePtr table = db.getDimStyleTableId().safeOpenObject(OdDb::kForWrite);
  OdDbDimStyleTableRecordPtr style = OdDbDimStyleTableRecord::createObject();
  style->setName(name);
  OdDbObjectId id = table->add(style.get());
  style->setDimVar(OdResBuf::newRb(40, scale).get());
  style->setDimVar(OdResBuf::newRb(176, color).get());
  if (textStyle) {
    OdDbTextStyleTablePtr styles = db.getTextStyleTableId().safeOpenObject();
    style->setDimtxsty(styles->getAt(textStyle));
  }
  return id;
}

// The drawing saved as `file` with `entities` (DXF lines, code then value, "{ms}" standing
// for the model space's handle) appended to its model space, read back. For the kinds of
// entity the kernel reads but does not make (dimensions, leaders, tolerances).
inline OdDbDatabasePtr withEntities(OdDbDatabase& db, std::string entities,
                                    const std::filesystem::path& file) {
  const std::string ms = db.getModelSpaceId().getHandle().ascii();
  for (size_t at; (at = entities.find("{ms}")) != std::string::npos;) entities.replace(at, 4, ms);
  std::string text = db.writeBuffer(false);
  const size_t section = text.find("ENTITIES");
  const size_t end = text.find("\nENDSEC", section);
  const size_t line = text.rfind('\n', end - 1) + 1;
  text.insert(line, entities);
  std::ofstream(file, std::ios::binary) << text;
  return OdDbDatabase::readFile(file);
}

// One error as a check reports it.
struct Reported {
  std::string record;  // the name of the record at fault
  std::uint64_t tag = 0;
  std::uint32_t flags = 0;
  std::vector<std::string> fixes;  // "name@file" of each fix, in order
  int recommended = -1;
  st::StErrorPtr error;
  OdArray<st::StFixPtr> fixObjects;
};

// Drives `plugin` over the whole drawing as the check manager does (set-up, start, then next
// and getError until done) and collects each error with its fixes.
inline std::vector<Reported> check(st::StDWSPlugin& plugin, OdDbDatabase* drawing,
                                   const std::vector<OdDbDatabase*>& standards) {
  OdArray<OdString> names;
  OdArray<OdDbDatabase*> dbs;
  for (OdDbDatabase* db : standards) {
    names.push_back(std::filesystem::path(db->getFilename().c_str()).filename().wstring());
    dbs.push_back(db);
  }
  plugin.initialize(nullptr);
  plugin.setupForAudit(drawing, drawing->getFilename(), names, dbs);
  plugin.setObjects({}, true);
  plugin.start(nullptr);
  std::vector<Reported> seen;
  for (;;) {
    plugin.next();
    if (plugin.done()) break;
    st::StErrorPtr error = plugin.getError();
    if (error.isNull()) break;
    Reported r;
    OdDbSymbolTableRecordPtr record = error->objectId().safeOpenObject();
    r.record = record->getName().toUtf8();
    r.tag = error->tag();
    r.flags = error->flags();
    plugin.getAllFixes(error.get(), r.fixObjects, r.recommended);
    for (const st::StFixPtr& fix : r.fixObjects)
      r.fixes.push_back(fix->name().toUtf8() + "@" +
                        std::filesystem::path(fix->standardsFile().c_str()).filename().string());
    r.error = error;
    seen.push_back(r);
  }
  EXPECT_TRUE(plugin.getError().isNull());
  return seen;
}

// The objects of a saved ASCII drawing, by handle: their type, name and tags. The header is
// left out ($HANDSEED moves with every new object).
struct SavedObject {
  std::string type;
  std::string name;
  std::string tags;
};

inline std::map<std::string, SavedObject> savedObjects(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<std::pair<std::string, std::string>> tags;
  std::string code;
  std::string value;
  while (std::getline(in, code) && std::getline(in, value)) {
    auto trim = [](std::string& s) {
      while (!s.empty() && (s.back() == '\r' || s.back() == ' ')) s.pop_back();
      s.erase(0, s.find_first_not_of(' '));
    };
    trim(code);
    trim(value);
    tags.emplace_back(code, value);
  }
  std::map<std::string, SavedObject> objects;
  std::string section;
  SavedObject* current = nullptr;
  for (size_t i = 0; i < tags.size(); ++i) {
    const auto& [c, v] = tags[i];
    if (c == "0") {
      current = nullptr;
      if (v == "SECTION" && i + 1 < tags.size()) section = tags[i + 1].second;
      if (section == "HEADER" || v == "SECTION" || v == "ENDSEC" || v == "EOF") continue;
      // The object's handle is the first 5 (105 for a dimension style) after its type.
      for (size_t j = i + 1; j < tags.size() && tags[j].first != "0"; ++j) {
        if (tags[j].first == "5" || tags[j].first == "105") {
          current = &objects[tags[j].second];
          current->type = v;
          break;
        }
      }
      continue;
    }
    if (!current) continue;
    if (c == "2" && current->name.empty()) current->name = v;
    current->tags += c + "=" + v + "\n";
  }
  return objects;
}

// What changed between two saves of a drawing, one "TYPE name" (or "TYPE #handle") per
// object, sorted: objects whose tags differ, objects added (+) and removed (-).
inline std::vector<std::string> changedObjects(const std::filesystem::path& before,
                                               const std::filesystem::path& after) {
  auto a = savedObjects(before);
  auto b = savedObjects(after);
  auto label = [](const std::string& handle, const SavedObject& o) {
    return o.type + " " + (o.name.empty() ? "#" + handle : o.name);
  };
  std::set<std::string> out;
  for (const auto& [handle, object] : a) {
    auto it = b.find(handle);
    if (it == b.end())
      out.insert("-" + label(handle, object));
    else if (it->second.tags != object.tags)
      out.insert(label(handle, it->second));
  }
  for (const auto& [handle, object] : b)
    if (!a.count(handle)) out.insert("+" + label(handle, object));
  return {out.begin(), out.end()};
}

using testsupport::ezdxf;

}  // namespace plugintest
