#include "HostEditCommands.h"

#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "HostFrontend.h"
#include "HostLayerCommand.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdError.h"

namespace {

HostApplication& app() {
  return HostApplication::running();
}

bool isKeyword(const OdString& word, const wchar_t* keyword) {
  return word.iCompare(OdString(keyword)) == 0;
}

OdString entities(int n) {
  return OdString::format(n == 1 ? L"%d entity" : L"%d entities", n);
}

class SelectCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().commandDocument(L"SELECT");
    if (!doc) return false;
    OdString word;
    if (!app().getString(L"Select [All/None]: ", word)) return false;
    OdDbObjectIdArray& selection = doc->selection();
    if (isKeyword(word, L"NONE")) {
      selection.clear();
      app().cmdPrint(L"SELECT: nothing is selected\n");
      return true;
    }
    if (!isKeyword(word, L"ALL")) {
      app().cmdPrintf(L"SELECT: unknown option \"%ls\"; give All or None\n", word.c_str());
      return false;
    }
    OdDbBlockTableRecordPtr model = doc->database()->getModelSpaceId().safeOpenObject();
    selection.clear();
    for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step())
      selection.push_back(it->objectId());
    app().cmdPrintf(L"SELECT: %ls selected\n", entities(int(selection.size())).c_str());
    return true;
  }
};

class ChangeCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().commandDocument(L"CHANGE");
    if (!doc) return false;
    OdString property;
    OdString name;
    if (!app().getString(L"Property to change [Layer]: ", property)) return false;
    if (!isKeyword(property, L"LAYER")) {
      app().cmdPrintf(L"CHANGE: unknown property \"%ls\"; give Layer\n", property.c_str());
      return false;
    }
    if (!app().getString(L"New layer: ", name)) return false;
    OdDbDatabase* db = doc->database();
    OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject();
    const OdDbObjectId layer = layers->getAt(name);
    if (layer.isNull()) {
      app().cmdPrintf(L"CHANGE: the drawing has no layer %ls\n", name.c_str());
      return false;
    }
    name = OdDbSymbolTableRecordPtr(layer.safeOpenObject())->getName();
    OdDbObjectIdArray selected;
    for (const OdDbObjectId& id : doc->selection())
      if (!id.isNull() && !id.isErased() && id.database() == db) selected.push_back(id);
    if (selected.empty()) {
      app().cmdPrint(L"CHANGE: nothing is selected\n");
      return false;
    }
    int moved = 0;
    try {
      for (const OdDbObjectId& id : selected) {
        OdDbEntityPtr entity = OdDbEntity::cast(id.safeOpenObject().get());
        if (entity.isNull() || entity->layerId() == layer) continue;
        entity = id.safeOpenObject(OdDb::kForWrite);
        entity->setLayer(layer);
        ++moved;
      }
    } catch (const OdError& e) {
      app().cmdPrintf(L"CHANGE: %ls moved to layer %ls, then: %ls\n", entities(moved).c_str(),
                      name.c_str(), e.description().c_str());
      return false;
    }
    app().cmdPrintf(L"CHANGE: %ls moved to layer %ls\n", entities(moved).c_str(), name.c_str());
    return true;
  }
};

class NewCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().documents().newDocument();
    app().cmdPrintf(L"NEW: %ls\n", doc->title().c_str());
    return true;
  }
};

class ZoomCommand : public UICmdProcess {
 public:
  bool execute() override {
    HostDocument* doc = app().commandDocument(L"ZOOM");
    if (!doc) return false;
    OdString word;
    if (!app().getString(L"Zoom [Extents]: ", word)) return false;
    if (!isKeyword(word, L"E") && !isKeyword(word, L"EXTENTS")) {
      app().cmdPrintf(L"ZOOM: unknown option \"%ls\"; give Extents\n", word.c_str());
      return false;
    }
    if (app().front().zoomExtents(doc)) return true;
    app().cmdPrint(L"ZOOM: this host has no drawing view\n");
    return false;
  }
};

}  // namespace

void registerHostEditCommands(HostCommandRegistry& registry) {
  const OdString group(L"HOSTCORE");
  registry.add(L"-LAYER", group, kHostCmdModal, &createCommand<HostLayerCommand>);
  registry.add(L"SELECT", group, kHostCmdModal, &createCommand<SelectCommand>);
  registry.add(L"CHANGE", group, kHostCmdModal, &createCommand<ChangeCommand>);
  registry.add(L"NEW", group, kHostCmdModal, &createCommand<NewCommand>);
  registry.add(L"ZOOM", group, kHostCmdTransparent, &createCommand<ZoomCommand>);
}
