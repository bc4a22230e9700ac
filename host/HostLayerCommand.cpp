#include "HostLayerCommand.h"

#include <algorithm>
#include <cstdarg>
#include <cwchar>
#include <vector>

#include "HostApplication.h"
#include "HostFormat.h"
#include "HostLayerRules.h"
#include "OdDbDatabase.h"
#include "OdDbDictionary.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdError.h"
#include "OdResBuf.h"

namespace {

HostApplication& app() {
  return HostApplication::running();
}

enum Option {
  kNew,
  kColor,
  kLtype,
  kLweight,
  kSet,
  kRename,
  kOn,
  kOff,
  kFreeze,
  kThaw,
  kDelete,
  kOptionCount
};
constexpr const wchar_t* kOptionNames[kOptionCount] = {L"NEW",    L"COLOR",  L"LTYPE", L"LWEIGHT",
                                                       L"SET",    L"RENAME", L"ON",    L"OFF",
                                                       L"FREEZE", L"THAW",   L"DELETE"};

// The option `word` names, whole or by a beginning no other option shares; -1 for none.
int matchOption(const OdString& word) {
  OdString upper = word;
  upper.makeUpper();
  int found = -1;
  for (int i = 0; i < kOptionCount; ++i) {
    const OdString name(kOptionNames[i]);
    if (upper == name) return i;
    if (upper.isEmpty() || upper.getLength() > name.getLength() ||
        name.left(upper.getLength()) != upper)
      continue;
    if (found >= 0) return -1;
    found = i;
  }
  return found;
}

// Prints "-LAYER: " and the message as one line; returns false for the command to return.
bool fail(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const OdString text = hostVFormat(format, args);
  va_end(args);
  app().cmdPrint(OdString(L"-LAYER: ") + text + L"\n");
  return false;
}

bool ask(const wchar_t* prompt, OdString& word) {
  return app().getString(prompt, word);
}

OdDbLayerTableRecordPtr openLayer(OdDbDatabase& db, const OdString& name,
                                  OdDb::OpenMode mode = OdDb::kForRead) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject();
  OdDbObjectId id = table->getAt(name);
  return id.isNull() ? OdDbLayerTableRecordPtr() : OdDbLayerTableRecordPtr(id.safeOpenObject(mode));
}

void setCurrentLayer(OdDbDatabase& db, const OdString& name) {
  OdResBufPtr value = OdResBuf::newRb(8, name);
  db.setHeaderVariable(L"$CLAYER", value.get());
}

}  // namespace

OdString HostLayerCommand::whyInvalidName(const OdString& name) {
  if (name.isEmpty()) return L"it is empty";
  if (name.getLength() > 255) return L"it is longer than 255 characters";
  static const wchar_t kForbidden[] = L"<>/\\\":;?*|,=`";
  for (int i = 0; i < name.getLength(); ++i) {
    const wchar_t c = name.c_str()[i];
    if (c < 0x20) return L"it contains a control character";
    if (std::wcschr(kForbidden, c)) return OdString::format(L"it contains '%lc'", c);
  }
  return OdString();
}

bool HostLayerCommand::execute() {
  OdDbDatabase* db = app().currentDatabase();
  if (!db) return fail(L"no document is open");
  OdString word;
  if (!ask(L"Enter an option [New/Color/Ltype/LWeight/Set/Rename/ON/OFF/Freeze/Thaw/Delete]: ",
           word))
    return false;
  const int option = matchOption(word);
  try {
    switch (option) {
      case kNew:
        return addLayer(*db);
      case kColor:
        return setColor(*db);
      case kLtype:
        return setLinetype(*db);
      case kLweight:
        return setLineweight(*db);
      case kSet:
        return setCurrent(*db);
      case kRename:
        return rename(*db);
      case kOn:
      case kOff:
      case kFreeze:
      case kThaw:
        return setState(*db, option);
      case kDelete:
        return erase(*db);
      default:
        return fail(
            L"unknown option \"%ls\"; give New, Color, Ltype, LWeight, Set, Rename, ON, OFF, "
            L"Freeze, Thaw or Delete",
            word.c_str());
    }
  } catch (const OdError& e) {
    return fail(L"%ls", e.description().c_str());
  }
}

bool HostLayerCommand::addLayer(OdDbDatabase& db) {
  OdString name;
  if (!ask(L"Name of the new layer: ", name)) return false;
  if (const OdString why = whyInvalidName(name); !why.isEmpty())
    return fail(L"\"%ls\" is not a valid layer name: %ls", name.c_str(), why.c_str());
  if (OdDbLayerTableRecordPtr existing = openLayer(db, name); !existing.isNull())
    return fail(L"a layer named %ls exists already", existing->getName().c_str());
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  table->add(layer.get());
  app().cmdPrintf(L"Layer %ls created\n", name.c_str());
  return true;
}

bool HostLayerCommand::setColor(OdDbDatabase& db) {
  OdString text;
  OdString name;
  if (!ask(L"Colour index (1-255): ", text) || !ask(L"Layer to colour: ", name)) return false;
  wchar_t* end = nullptr;
  const long index = std::wcstol(text.c_str(), &end, 10);
  if (text.isEmpty() || *end != L'\0' || index < 1 || index > 255)
    return fail(L"colour \"%ls\" is not a colour index from 1 to 255", text.c_str());
  OdDbLayerTableRecordPtr layer = openLayer(db, name, OdDb::kForWrite);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", name.c_str());
  layer->setColorIndex(static_cast<short>(index));
  app().cmdPrintf(L"Layer %ls now has colour %ld\n", layer->getName().c_str(), index);
  return true;
}

bool HostLayerCommand::setLinetype(OdDbDatabase& db) {
  OdString linetypeName;
  OdString name;
  if (!ask(L"Linetype: ", linetypeName) || !ask(L"Layer to give it: ", name)) return false;
  OdDbLinetypeTablePtr linetypes = db.getLinetypeTableId().safeOpenObject();
  const OdDbObjectId linetype = linetypes->getAt(linetypeName);
  if (linetype.isNull()) return fail(L"the drawing has no linetype %ls", linetypeName.c_str());
  if (linetypeName.iCompare(L"ByLayer") == 0 || linetypeName.iCompare(L"ByBlock") == 0)
    return fail(L"a layer cannot have the linetype %ls", linetypeName.c_str());
  OdDbLayerTableRecordPtr layer = openLayer(db, name, OdDb::kForWrite);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", name.c_str());
  layer->setLinetypeObjectId(linetype);
  app().cmdPrintf(L"Layer %ls now has linetype %ls\n", layer->getName().c_str(),
                  layer->linetypeName().c_str());
  return true;
}

bool HostLayerCommand::setLineweight(OdDbDatabase& db) {
  OdString text;
  OdString name;
  if (!ask(L"Lineweight in mm (0.00-2.11 or Default): ", text) || !ask(L"Layer to give it: ", name))
    return false;
  OdDb::LineWeight weight;
  if (!HostLayerRules::parseLineweight(text, weight))
    return fail(L"lineweight \"%ls\" is not one of 0.00, 0.05 ... 2.11 mm or Default",
                text.c_str());
  if (db.formatRelease() < HostLayerRules::kFirstReleaseWithLineweights)
    return fail(L"the drawing's format %ls keeps no lineweights", db.versionString().c_str());
  OdDbLayerTableRecordPtr layer = openLayer(db, name, OdDb::kForWrite);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", name.c_str());
  layer->setLineWeight(weight);
  app().cmdPrintf(L"Layer %ls now has lineweight %ls\n", layer->getName().c_str(),
                  HostLayerRules::lineweightText(weight).c_str());
  return true;
}

bool HostLayerCommand::setCurrent(OdDbDatabase& db) {
  OdString name;
  if (!ask(L"Layer to make current: ", name)) return false;
  OdDbLayerTableRecordPtr layer = openLayer(db, name);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", name.c_str());
  if (layer->isFrozen())
    return fail(L"layer %ls is frozen and cannot be made current", layer->getName().c_str());
  setCurrentLayer(db, layer->getName());
  app().cmdPrintf(L"Layer %ls is current\n", layer->getName().c_str());
  return true;
}

bool HostLayerCommand::rename(OdDbDatabase& db) {
  OdString oldName;
  OdString newName;
  if (!ask(L"Layer to rename: ", oldName) || !ask(L"New name of the layer: ", newName))
    return false;
  OdDbLayerTableRecordPtr layer = openLayer(db, oldName);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", oldName.c_str());
  const OdDbObjectId id = layer->objectId();
  if (id == db.getLayerZeroId()) return fail(L"layer 0 cannot be renamed");
  if (const OdString why = whyInvalidName(newName); !why.isEmpty())
    return fail(L"\"%ls\" is not a valid layer name: %ls", newName.c_str(), why.c_str());
  // Another spelling of the layer's own name is a rename; any other layer's name is taken.
  if (OdDbLayerTableRecordPtr other = openLayer(db, newName);
      !other.isNull() && other->objectId() != id)
    return fail(L"a layer named %ls exists already", other->getName().c_str());
  oldName = layer->getName();
  layer.release();

  // The holders are found while they still name the layer by its old name.
  std::vector<OdDbObjectId> holders;
  for (const OdDbDatabase::RecordReference& r : db.recordReferences(OdDbObjectIdArray{id}))
    if (r.link == OdDbDatabase::RecordLink::kName &&
        std::find(holders.begin(), holders.end(), r.holder) == holders.end())
      holders.push_back(r.holder);
  const bool wasCurrent = HostLayerRules::currentLayer(db).iCompare(oldName) == 0;
  {
    OdDbLayerTableRecordPtr record = id.safeOpenObject(OdDb::kForWrite);
    record->setName(newName);
  }
  std::size_t done = 0;
  const std::size_t changed = db.renameRecordReferences(holders, id, oldName, done);
  if (wasCurrent) setCurrentLayer(db, newName);
  app().cmdPrintf(L"Layer %ls renamed to %ls; %d reference(s) follow it\n", oldName.c_str(),
                  newName.c_str(), static_cast<int>(changed + (wasCurrent ? 1 : 0)));
  return true;
}

bool HostLayerCommand::setState(OdDbDatabase& db, int option) {
  static const wchar_t* const kPrompts[] = {L"Layer to turn on: ", L"Layer to turn off: ",
                                            L"Layer to freeze: ", L"Layer to thaw: "};
  static const wchar_t* const kDone[] = {L"turned on", L"turned off", L"frozen", L"thawed"};
  const int state = option - kOn;
  OdString name;
  if (!ask(kPrompts[state], name)) return false;
  OdDbLayerTableRecordPtr layer = openLayer(db, name, OdDb::kForWrite);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", name.c_str());
  if (option == kFreeze && HostLayerRules::currentLayer(db).iCompare(layer->getName()) == 0)
    return fail(L"layer %ls is current and cannot be frozen", layer->getName().c_str());
  switch (option) {
    case kOn:
    case kOff:
      layer->setIsOff(option == kOff);
      break;
    default:
      layer->setIsFrozen(option == kFreeze);
      break;
  }
  app().cmdPrintf(L"Layer %ls %ls\n", layer->getName().c_str(), kDone[state]);
  return true;
}

bool HostLayerCommand::erase(OdDbDatabase& db) {
  OdString name;
  if (!ask(L"Layer to delete: ", name)) return false;
  OdDbLayerTableRecordPtr layer = openLayer(db, name);
  if (layer.isNull()) return fail(L"the drawing has no layer %ls", name.c_str());
  name = layer->getName();
  if (const OdString why = HostLayerRules::whyNotDeletable(db, layer->objectId()); !why.isEmpty())
    return fail(L"layer %ls cannot be deleted: %ls", name.c_str(), why.c_str());
  // What the layer owns goes with it, so that no object is left whose owner is gone: its
  // extension dictionary and the entries that dictionary owns.
  const OdDbObjectId id = layer->objectId();
  const OdDbObjectId dictId = layer->extensionDictionary();
  layer.release();
  if (!dictId.isNull()) {
    std::vector<OdDbObjectId> entries;
    {
      OdDbDictionaryPtr dict = dictId.safeOpenObject();
      for (OdDbDictionaryIteratorPtr it = dict->newIterator(); !it->done(); it->next())
        entries.push_back(it->objectId());
    }
    for (const OdDbObjectId& entry : entries)
      if (OdDbObjectPtr owned = entry.openObject(OdDb::kForWrite);
          !owned.isNull() && owned->ownerId() == dictId)
        owned->erase();
    OdDbObjectPtr(dictId.safeOpenObject(OdDb::kForWrite))->erase();
  }
  OdDbObjectPtr(id.safeOpenObject(OdDb::kForWrite))->erase();
  app().cmdPrintf(L"Layer %ls deleted\n", name.c_str());
  return true;
}
