#pragma once

// What the entry tests share: a silent headless host over a configuration file of its own,
// with the module loaded the way a host loads it, and real drawings written by the kernel.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "StDbReaderWriter.h"
#include "TestSupport.h"

namespace entrytest {

namespace fs = std::filesystem;

// The plug-in library of the engine tests, whose EngineLayerPlugin reports layers whose
// colour differs from the standard's.
inline const char* const kTestPluginLibrary = "EngineTestPlugins";

// Asks ModuleHost for the standard plug-ins (layers, linetypes, text and dimension styles).
inline const std::vector<std::string> kStandardPlugins{
    "StDWSDimstylePlugin", "StDWSLayerPlugin", "StDWSLinetypePlugin", "StDWSTextstylePlugin"};

// A headless host with the module loaded by file name, which the host unloads when it shuts
// down (with the plug-in library the module loaded). The configuration registers the
// default plug-in library without a file, so that no plug-in loads but those asked for here:
// from the test plug-in library, or the standard plug-ins (kStandardPlugins) from the default
// library.
class ModuleHost {
 public:
  explicit ModuleHost(const std::vector<std::string>& testPlugins = {})
      : host(HeadlessHost::Options{configure(dir.path() / "config.json", testPlugins), nullptr}) {
    host.loadModule(L"StandardsAudit");
  }
  ModuleHost(const ModuleHost&) = delete;
  ModuleHost& operator=(const ModuleHost&) = delete;

  const std::string& output() const { return host.output(); }

  testsupport::TempDir dir;
  HeadlessHost host;

 private:
  // Writes the configuration file and returns its path.
  static fs::path configure(const fs::path& file, const std::vector<std::string>& testPlugins) {
    auto tree = HostConfigTree::open(file);
    const HostConfigTree::Path plugins{"cmddata", "StandardsAudit", "Plugins"};
    tree->createKey({"cmddata"}, "StandardsAudit");
    tree->createKey({"cmddata", "StandardsAudit"}, "Plugins");
    tree->createKey(plugins, "StStandardPlugins");
    if (testPlugins.empty()) return file;
    const bool standard = testPlugins == kStandardPlugins;
    const char* const libraryName = standard ? "StStandardPlugins" : kTestPluginLibrary;
    HostConfigTree::Path library = plugins;
    if (!standard) tree->createKey(library, libraryName);
    library.push_back(libraryName);
    tree->setValue(library, "PluginDll", OdVariant(OdString::fromUtf8(libraryName)));
    for (const std::string& name : testPlugins) {
      tree->createKey(library, name);
      HostConfigTree::Path plugin = library;
      plugin.push_back(name);
      tree->setValue(plugin, "PluginClassName", OdVariant(OdString::fromUtf8(name)));
      tree->setValue(plugin, "PluginInUse", OdVariant(std::int32_t{1}));
    }
    return file;
  }
};

// Layer name to colour index.
using Layers = std::map<std::string, short>;

// A new drawing with `layers`, written to `file`; with `standards` set it carries that list
// of standards files (an empty list leaves an empty association in the drawing).
inline fs::path writeDrawing(const fs::path& file, const std::vector<fs::path>* standards = nullptr,
                             const Layers& layers = {}) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  if (!layers.empty()) {
    OdDbLayerTablePtr table = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    for (const auto& [name, color] : layers) {
      OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
      layer->setName(OdString::fromUtf8(name));
      layer->setColorIndex(color);
      table->add(layer.get());
    }
  }
  if (standards) {
    OdArray<OdString> paths;
    for (const auto& path : *standards) paths.append(OdString::fromUtf8(path.string()));
    st::StDbReaderWriterPtr list = st::StDbReaderWriter::createObject();
    list->setDatabase(db.get());
    list->writeStandardFiles(paths);
  }
  db->writeFile(file);
  return file;
}

inline std::size_t count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (auto pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + 1)) ++n;
  return n;
}

}  // namespace entrytest
