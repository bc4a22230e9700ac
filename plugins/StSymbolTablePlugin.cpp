#include "StSymbolTablePlugin.h"

#include <algorithm>
#include <limits>

#include "OdDbDictionary.h"
#include "OdDbSymbolTable.h"
#include "OdError.h"
#include "OdResBuf.h"
#include "StAppServices.h"
#include "StErrorFlags.h"
#include "StIgnoreMarks.h"
#include "StNameDistance.h"
#include "StRecordLookup.h"
#include "StSettingsStorage.h"
#include "StStandardPropertyFormatter.h"
#include "StVariantText.h"

namespace st {

namespace {

const OdVariant* find(const StPropertyList& list, const OdString& name) {
  for (const auto& [key, value] : list)
    if (key == name) return &value;
  return nullptr;
}

// Two values agree when compareOdVariant says they are equal. A plug-in lists every
// property a record's release stores, defaults included, so a value one side lacks is one
// its release cannot hold: it is not compared.
bool sameValue(const OdVariant* a, const OdVariant* b) {
  if (!a || a->isVoid() || !b || b->isVoid()) return true;
  return compareOdVariant(*a, *b);
}

// The names of both lists, those of `a` first, each once.
std::vector<OdString> unionOfNames(const StPropertyList& a, const StPropertyList& b) {
  std::vector<OdString> names;
  for (const auto* list : {&a, &b})
    for (const auto& entry : *list)
      if (std::find(names.begin(), names.end(), entry.first) == names.end())
        names.push_back(entry.first);
  return names;
}

bool sameProperties(const StPropertyList& a, const StPropertyList& b) {
  for (const OdString& name : unionOfNames(a, b))
    if (!sameValue(find(a, name), find(b, name))) return false;
  return true;
}

// A name reduced to what a user means by it: case folded, blanks, '-', '_' and '.' dropped,
// so that "Wall-Hatch", "wall_hatch" and "WALL HATCH" read the same.
OdString looseName(const OdString& name) {
  OdString folded = name;
  folded.makeLower();
  OdString out;
  for (int i = 0; i < folded.getLength(); ++i) {
    const wchar_t c = folded[i];
    if (c != L' ' && c != L'-' && c != L'_' && c != L'.') out += c;
  }
  return out;
}

const wchar_t* const kNameProperty = L"Name";

// "the DICTIONARY 1F": what a user can find the object by.
OdString describeObject(const OdDbObjectId& id) {
  OdString type = L"object";
  if (OdDbObjectPtr object = id.openObject(); !object.isNull()) type = object->dxfType();
  return OdString::format(L"the %ls %ls", type.c_str(),
                          OdString::fromUtf8(id.getHandle().ascii()).c_str());
}

}  // namespace

StSymbolTablePlugin::StSymbolTablePlugin(const OdString& displayName, const OdString& purpose,
                                         const OdString& kind, const OdString& caption,
                                         const OdString& className)
    : StDWSPluginImplBase<StDWSPlugin>(
          displayName, purpose, L"1.0",
          L"Compares by name with the standards files associated with the drawing; a fix "
          L"either gives a record the standard's properties or replaces a non-standard record "
          L"everywhere it is used and removes it.",
          L"The standards-audit project"),
      kind_(kind),
      caption_(caption) {
  classNames_.push_back(className);
}

void StSymbolTablePlugin::setupForAudit(OdDbDatabase* drawing, const OdString& drawingFileName,
                                        const OdArray<OdString>& standardsFileNames,
                                        const OdArray<OdDbDatabase*>& standardsDatabases) {
  clear();
  drawing_ = drawing;
  firstNewHandle_ = drawing_ ? drawing_->nextHandle().value() : 0;
  standards_.clear();
  for (unsigned i = 0; i < standardsDatabases.size(); ++i) {
    if (!standardsDatabases[i] || standardsDatabases[i] == drawing) continue;
    Standard standard;
    standard.db = standardsDatabases[i];
    standard.path = standard.db->getFilename();
    if (standard.path.isEmpty() && i < standardsFileNames.size())
      standard.path = standardsFileNames[i];
    standards_.push_back(standard);
  }
  candidates_.clear();
  candidates_.resize(standards_.size());
  preferredName_.empty();
  // The settings live in the module's services, which need a host; without one there is
  // simply no preferred file.
  try {
    if (StSettingsStorage* settings = ::stSettingsStorage();
        settings && settings->hasPreferredFile())
      preferredName_ = getFileName(settings->getPreferredFile(), false);
  } catch (...) {
    preferredName_.empty();
  }
}

void StSymbolTablePlugin::setObjects(const OdArray<OdDbObjectId>& objects, bool wholeDrawing) {
  objects_ = objects;
  wholeDrawing_ = wholeDrawing;
}

void StSymbolTablePlugin::start(StError* startingError) {
  current_ = Finding();
  queue_.clear();
  index_.reset();
  started_ = true;
  position_ = 0;
  if (!drawing_) return;
  const OdDbObjectId table = tableOf(drawing_);
  if (table.isNull()) return;
  if (wholeDrawing_) {
    OdDbSymbolTablePtr records = table.safeOpenObject();
    for (auto it = records->newIterator(); !it->done(); it->step())
      queue_.push_back(it->getRecordId());
  } else {
    for (const OdDbObjectId& id : objects_) {
      OdDbObjectPtr object = id.openObject();
      if (!object.isNull() && object->ownerId() == table) queue_.push_back(id);
    }
  }
  // The walk stands before the first record: next() moves to the first error.
  position_ = static_cast<std::size_t>(-1);
}

void StSymbolTablePlugin::next() {
  current_ = Finding();
  if (!started_) return;
  while (++position_ < queue_.size()) {
    Finding finding;
    if (evaluate(queue_[position_], finding)) {
      current_ = finding;
      return;
    }
  }
  position_ = queue_.size();
}

bool StSymbolTablePlugin::done() const {
  return !started_ || position_ == queue_.size();
}

StErrorPtr StSymbolTablePlugin::getError() {
  return current_.error;
}

void StSymbolTablePlugin::clear() {
  current_ = Finding();
  queue_.clear();
  position_ = 0;
  started_ = false;
  index_.reset();
  for (auto& list : candidates_) list.reset();
}

StPropertyFormatterPtr StSymbolTablePlugin::propertyFormatter() const {
  return StPropertyFormatterPtr(OdRxObjectImpl<StStandardPropertyFormatter>::createObject());
}

bool StSymbolTablePlugin::evaluate(const OdDbObjectId& id, Finding& finding) {
  if (id.isNull() || id.isErased() || id.database() != drawing_) return false;
  OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(id.openObject().get());
  if (record.isNull() || record->isDependent() || !isChecked(*record)) return false;
  StPropertyList current;
  readProperties(*record, current);
  bool known = false;
  for (const Standard& standard : standards_)
    known = known || hasRecord(tableOf(standard.db), record->getName());
  if (known) return findPropertyError(*record, current, finding);
  if (isReserved(record->getName())) return false;
  findNameError(*record, current, finding);
  return true;
}

bool StSymbolTablePlugin::findPropertyError(OdDbSymbolTableRecord& record,
                                            const StPropertyList& current, Finding& finding) {
  const OdString name = record.getName();
  for (std::size_t i = 0; i < standards_.size(); ++i) {
    const OdDbObjectId id = getRecord(tableOf(standards_[i].db), name);
    if (id.isNull()) continue;
    OdDbSymbolTableRecordPtr standardRecord = id.safeOpenObject();
    auto properties = std::make_shared<StPropertyList>();
    readProperties(*standardRecord, *properties);
    // Matching any standards file is conforming: the drawing follows one of its standards.
    if (sameProperties(current, *properties)) return false;
    finding.holders.push_back({i, id, standardRecord->getName(), std::move(properties)});
  }
  // The error lists every property of the record that some standard compares, so that each
  // fix's values line up with a current value (absent where that standard cannot hold it).
  for (const FixSource& holder : finding.holders)
    for (const OdString& n : unionOfNames(current, *holder.properties))
      if (find(current, n) && find(*holder.properties, n) &&
          std::find(finding.names.begin(), finding.names.end(), n) == finding.names.end())
        finding.names.push_back(n);
  StPropertyList listed;
  for (const OdString& n : finding.names) {
    const OdVariant* value = find(current, n);
    listed.emplace_back(n, value ? *value : OdVariant());
  }
  finding.error = newError(
      record, kTagProperties,
      OdString::format(L"The %ls \"%ls\" has non-standard properties", kind_.c_str(), name.c_str()),
      OdString::format(L"The standards files define the %ls \"%ls\" with other properties.",
                       kind_.c_str(), name.c_str()),
      listed);
  const int preferred = preferredStandard();
  finding.recommendedSource = finding.holders.front();
  for (const FixSource& holder : finding.holders)
    if (static_cast<int>(holder.standard) == preferred) finding.recommendedSource = holder;
  return true;
}

void StSymbolTablePlugin::findNameError(OdDbSymbolTableRecord& record,
                                        const StPropertyList& current, Finding& finding) {
  const OdString name = record.getName();
  StPropertyList listed{{kNameProperty, OdVariant(name)}};
  listed.insert(listed.end(), current.begin(), current.end());
  finding.error = newError(
      record, kTagNonStandardName,
      OdString::format(L"The %ls \"%ls\" has a non-standard name", kind_.c_str(), name.c_str()),
      OdString::format(L"No standards file has a %ls called \"%ls\".", kind_.c_str(), name.c_str()),
      listed);
  for (const auto& entry : listed) finding.names.push_back(entry.first);
  finding.name = name;
  finding.everyCandidate = true;

  // A recommendation only with confidence: the same name ignoring case, or else a single
  // standard name that differs from it only in case and separators. Among files holding
  // that name, the preferred file's record wins, else the first file's.
  const int preferred = preferredStandard();
  OdString lower = name;
  lower.makeLower();
  const OdString loose = looseName(name);
  std::optional<FixSource> exact;
  std::optional<FixSource> close;
  OdString closeName;
  bool ambiguous = false;
  std::size_t count = 0;
  for (std::size_t s = 0; s < standards_.size(); ++s) {
    const Candidates& list = candidates(s);
    const bool preferredFile = static_cast<int>(s) == preferred;
    if (auto it = list.byLowerName.find(lower); it != list.byLowerName.end()) {
      if (!exact || preferredFile) exact = list.records[it->second.front()];
    }
    if (auto it = list.byLooseName.find(loose); it != list.byLooseName.end()) {
      for (std::size_t index : it->second) {
        OdString candidate = list.records[index].name;
        candidate.makeLower();
        if (close && candidate != closeName) ambiguous = true;
        if (!close || preferredFile) {
          close = list.records[index];
          closeName = candidate;
        }
      }
    }
    count += list.records.size();
  }
  if (count == 0) {  // nothing to replace it with: still reported, but not fixable
    finding.error->setFlags((finding.error->flags() & ~kStErrorFixable) | kStErrorAlwaysReported);
    return;
  }
  if (exact)
    finding.recommendedSource = exact;
  else if (close && !ambiguous)
    finding.recommendedSource = close;
  // A replacement the fix could not carry out is not recommended: the problem is then shown
  // (and reported by a silent check) with the reason, instead of failing when fixed.
  OdString why;
  if (finding.recommendedSource &&
      !canReplace(record.objectId(), finding.recommendedSource->name, why)) {
    finding.recommendedSource.reset();
    finding.error->setDescription(finding.error->description() +
                                  L" It cannot be replaced automatically: " + why);
  }
}

StErrorPtr StSymbolTablePlugin::newError(OdDbSymbolTableRecord& record, std::uint64_t tag,
                                         const OdString& title, const OdString& description,
                                         const StPropertyList& properties) {
  StErrorPtr error = StError::createObject();
  error->setObjectId(record.objectId());
  error->setName(title);
  error->setDescription(description);
  error->setReason(caption_);
  error->setTag(tag);
  for (const auto& [name, value] : properties) error->addProperty(name, value);
  std::uint32_t flags = kStErrorFixable;
  if (hasObjectIgnoredMark(record.objectId())) flags |= kStErrorIgnored;
  error->setFlags(flags);
  return error;
}

StFixPtr StSymbolTablePlugin::newFix(const FixSource& source, const std::vector<OdString>& names) {
  const Standard& standard = standards_[source.standard];
  StFixPtr fix = StFix::createObject();
  fix->setName(source.name);
  fix->setDescription(OdString::format(L"The %ls \"%ls\" of %ls", kind_.c_str(),
                                       source.name.c_str(),
                                       getFileName(standard.path, true).c_str()));
  fix->setObjectId(source.id);
  fix->setStandardsFile(standard.path);
  for (const OdString& n : names) {
    const OdVariant* value = find(*source.properties, n);
    fix->setPropertyValue(n, value ? *value : OdVariant());
  }
  return fix;
}

void StSymbolTablePlugin::buildFixes(Finding& finding) {
  if (finding.built) return;
  finding.built = true;
  std::size_t total = 0;
  for (const FixSource* source :
       rankedSources(finding, std::numeric_limits<std::size_t>::max(), total)) {
    if (finding.recommendedSource && source->id == finding.recommendedSource->id)
      finding.recommended = static_cast<int>(finding.fixes.size());
    finding.fixes.push_back(newFix(*source, finding.names));
  }
}

std::vector<const StSymbolTablePlugin::FixSource*> StSymbolTablePlugin::rankedSources(
    const Finding& finding, std::size_t limit, std::size_t& total) {
  std::vector<const FixSource*> ranked;
  if (!finding.everyCandidate) {
    // Every holder has the record's own name: standards-file order is their rank.
    total = finding.holders.size();
    for (std::size_t i = 0; i < finding.holders.size() && i < limit; ++i)
      ranked.push_back(&finding.holders[i]);
  } else {
    struct Rank {
      bool differs;  // not equal ignoring case and separators
      std::size_t distance;
      const FixSource* source;
    };
    OdString lower = finding.name;
    lower.makeLower();
    const std::wstring loose = looseName(finding.name).str();
    const StNameDistance distance(lower.str());
    std::vector<Rank> ranks;
    for (std::size_t s = 0; s < standards_.size(); ++s) {
      const Candidates& list = candidates(s);
      for (std::size_t i = 0; i < list.records.size(); ++i)
        ranks.push_back(
            {list.looseNames[i] != loose, distance.to(list.lowerNames[i]), &list.records[i]});
    }
    total = ranks.size();
    const auto before = [](const Rank& a, const Rank& b) {
      if (a.differs != b.differs) return b.differs;
      if (a.distance != b.distance) return a.distance < b.distance;
      if (a.source->standard != b.source->standard) return a.source->standard < b.source->standard;
      return a.source->name.str() < b.source->name.str();
    };
    // A report wants the first few of thousands: only those are put in order.
    const auto end = ranks.begin() + static_cast<std::ptrdiff_t>(std::min(limit, ranks.size()));
    if (end == ranks.end())
      std::sort(ranks.begin(), ranks.end(), before);
    else
      std::partial_sort(ranks.begin(), end, ranks.end(), before);
    for (auto it = ranks.begin(); it != end; ++it) ranked.push_back(it->source);
  }
  if (finding.recommendedSource && !ranked.empty() &&
      std::none_of(ranked.begin(), ranked.end(), [&](const FixSource* source) {
        return source->id == finding.recommendedSource->id;
      }))
    ranked.back() = &*finding.recommendedSource;
  return ranked;
}

const StSymbolTablePlugin::Candidates& StSymbolTablePlugin::candidates(std::size_t standard) {
  if (!candidates_[standard]) {
    auto list = std::make_unique<Candidates>();
    const OdDbObjectId table = tableOf(standards_[standard].db);
    if (!table.isNull()) {
      OdDbSymbolTablePtr records = table.safeOpenObject();
      for (auto it = records->newIterator(); !it->done(); it->step()) {
        OdDbSymbolTableRecordPtr record = it->getRecord();
        if (record->isDependent() || !isChecked(*record)) continue;
        // A candidate's values start with its name, which a replacement changes.
        auto properties = std::make_shared<StPropertyList>();
        properties->emplace_back(kNameProperty, OdVariant(record->getName()));
        readProperties(*record, *properties);
        const std::size_t index = list->records.size();
        list->records.push_back({standard, it->getRecordId(), record->getName(), properties});
        OdString lower = record->getName();
        lower.makeLower();
        const OdString loose = looseName(record->getName());
        list->lowerNames.push_back(lower.str());
        list->looseNames.push_back(loose.str());
        list->byLowerName[lower].push_back(index);
        list->byLooseName[loose].push_back(index);
      }
    }
    candidates_[standard] = std::move(list);
  }
  return *candidates_[standard];
}

int StSymbolTablePlugin::preferredStandard() const {
  if (preferredName_.isEmpty()) return -1;
  for (std::size_t i = 0; i < standards_.size(); ++i)
    if (getFileName(standards_[i].path, false).iCompare(preferredName_) == 0)
      return static_cast<int>(i);
  return -1;
}

bool StSymbolTablePlugin::isStandard(OdDbDatabase* db) const {
  for (const Standard& standard : standards_)
    if (standard.db == db) return true;
  return false;
}

StSymbolTablePlugin::Finding* StSymbolTablePlugin::findingFor(StError* error, Finding& other) {
  if (!error) return nullptr;
  if (error == current_.error.get()) return &current_;
  if (!evaluate(error->objectId(), other) || other.error->tag() != error->tag()) return nullptr;
  return &other;
}

void StSymbolTablePlugin::getAllFixes(StError* error, OdArray<StFixPtr>& fixes,
                                      int& recommendedIndex) {
  recommendedIndex = -1;
  Finding other;
  Finding* finding = findingFor(error, other);
  if (!finding) return;
  buildFixes(*finding);
  fixes = finding->fixes;
  recommendedIndex = finding->recommended;
}

void StSymbolTablePlugin::getFirstFixes(StError* error, unsigned limit, OdArray<StFixPtr>& fixes,
                                        int& recommendedIndex, unsigned& total) {
  fixes.clear();
  recommendedIndex = -1;
  total = 0;
  Finding other;
  Finding* finding = findingFor(error, other);
  if (!finding) return;
  std::size_t all = 0;
  for (const FixSource* source : rankedSources(*finding, limit, all)) {
    if (finding->recommendedSource && source->id == finding->recommendedSource->id)
      recommendedIndex = static_cast<int>(fixes.size());
    // The list's own fix when it was made, so that both name the same object.
    StFixPtr made;
    for (const StFixPtr& fix : finding->fixes)
      if (fix->objectId() == source->id) made = fix;
    fixes.push_back(made.isNull() ? newFix(*source, finding->names) : made);
  }
  total = static_cast<unsigned>(all);
}

void StSymbolTablePlugin::getPropertyDiffs(StError* error, StFix* fix,
                                           OdArray<OdString>& propertyNames,
                                           OdArray<OdVariant>& currentValues,
                                           OdArray<OdVariant> standardValues) {
  if (!error || !fix) return;
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(error->propertyCount()); ++i) {
    OdString name;
    OdVariant current;
    OdVariant standard;
    if (!error->property(i, name, current)) continue;
    fix->propertyValue(name, standard);
    if (sameValue(&current, &standard)) continue;
    propertyNames.push_back(name);
    currentValues.push_back(current);
    standardValues.push_back(standard);
  }
}

StFixPtr StSymbolTablePlugin::getRecommendedFix(StError* error) {
  Finding other;
  Finding* finding = findingFor(error, other);
  if (!finding || !finding->recommendedSource) return StFixPtr();
  // The list's own fix when it was made, so that both name the same object.
  if (finding->built && finding->recommended >= 0)
    return finding->fixes[static_cast<unsigned>(finding->recommended)];
  return newFix(*finding->recommendedSource, finding->names);
}

void StSymbolTablePlugin::fixError(StError* error, StFix* fix) {
  if (!error || !fix || !drawing_) return;
  const OdDbObjectId record = error->objectId();
  if (record.isNull() || record.isErased() || record.database() != drawing_) return;
  const OdDbObjectId standard = fix->objectId();
  if (standard.isNull() || !isStandard(standard.database())) return;
  bool fixed = false;
  try {
    if (error->tag() == kTagProperties)
      fixed = applyStandard(record, standard);
    else if (error->tag() == kTagNonStandardName)
      fixed = replaceName(record, *fix, *error);
  } catch (const OdError& e) {
    fixed = false;
    explainUnfixed(*error, e.description());
  }
  if (fixed) error->setFlags(error->flags() | kStErrorFixed);
}

void StSymbolTablePlugin::explainUnfixed(StError& error, const OdString& why) const {
  error.setDescription(error.description() + L" It was not replaced: " + why);
}

bool StSymbolTablePlugin::replaceName(const OdDbObjectId& record, StFix& fix, StError& error) {
  const OdDbObjectId standardId = fix.objectId();
  OdDbSymbolTableRecordPtr standardRecord = standardId.safeOpenObject();
  const OdString name = standardRecord->getName();
  standardRecord = OdDbSymbolTableRecordPtr();
  StReferenceIndex& references = index();
  OdDbObjectId target = getRecord(tableOf(drawing_), name);
  if (target == record) return true;
  if (target.isNull() && !isReserved(recordName(record))) return renameInPlace(record, fix, error);
  // A record of the standard's name that an earlier fix of this check copied in (a layer's
  // standard linetype, say) gives way to the drawing's own record, which then becomes it in
  // place and keeps its handle.
  if (isNewThisCheck(target)) {
    references.moveAll(target, record);
    if (references.referencesTo(target).empty() && references.containedIn(target).empty()) {
      eraseOwned(target);
      return renameInPlace(record, fix, error);
    }
  }
  OdString why;
  if (!canReplace(record, name, why)) {
    explainUnfixed(error, why);
    return false;
  }
  OdDbObjectId extension;
  if (OdDbObjectPtr object = record.safeOpenObject(); !object.isNull())
    extension = object->extensionDictionary();
  references.moveAll(record, target);
  OdDbSymbolTableRecordPtr old = record.safeOpenObject(OdDb::kForWrite);
  if (moveHeaderVariables(old->getName(), name)) {
    explainUnfixed(error, L"a header variable still names it.");
    return false;
  }
  for (const OdDbObjectId& holder : references.referencesTo(record)) {
    if (holder.isErased()) continue;
    explainUnfixed(error, describeObject(holder) + L" still refers to it.");
    return false;
  }
  if (isReserved(old->getName())) return false;
  old->erase();
  old = OdDbSymbolTableRecordPtr();
  eraseOwned(extension);
  return true;
}

bool StSymbolTablePlugin::isNewThisCheck(const OdDbObjectId& record) const {
  return drawing_ && !record.isNull() && record.getHandle().value() >= firstNewHandle_;
}

bool StSymbolTablePlugin::canReplace(const OdDbObjectId& record, const OdString& name,
                                     OdString& why) {
  const OdDbObjectId target = getRecord(tableOf(drawing_), name);
  if (target.isNull() || target == record) return true;  // renamed in place
  // Objects that have the record as their container can be neither moved nor left pointing
  // at nothing, so the record must stay; its own extension dictionary is the exception: that
  // is the record's data and goes with it.
  OdDbObjectId extension;
  if (OdDbObjectPtr object = record.safeOpenObject(); !object.isNull())
    extension = object->extensionDictionary();
  for (const OdDbObjectId& holder : index().containedIn(record)) {
    if (holder.isErased() || holder == extension) continue;
    why = describeObject(holder) + L" belongs to it.";
    return false;
  }
  return true;
}

bool StSymbolTablePlugin::renameInPlace(const OdDbObjectId& record, StFix& fix, StError& error) {
  // The drawing has no record of the standard's name: the record itself takes the name and
  // the standard's properties, so it keeps its handle, and everything that points to it,
  // owns it or belongs to it stays as it is; only what names it by its old name changes.
  const OdDbObjectId standardId = fix.objectId();
  OdDbSymbolTableRecordPtr standardRecord = standardId.safeOpenObject();
  const OdString name = standardRecord->getName();
  standardRecord = OdDbSymbolTableRecordPtr();
  OdString oldName;
  {
    OdDbSymbolTableRecordPtr old = record.safeOpenObject(OdDb::kForWrite);
    oldName = old->getName();
    old->setName(name);
  }
  if (!applyStandard(record, standardId)) {
    OdDbSymbolTableRecordPtr(record.safeOpenObject(OdDb::kForWrite))->setName(oldName);
    explainUnfixed(error, OdString::format(L"the %ls \"%ls\" could not be given the standard's "
                                           L"properties.",
                                           kind_.c_str(), name.c_str()));
    return false;
  }
  index().renameAll(record, oldName);
  if (moveHeaderVariables(oldName, name)) {
    explainUnfixed(error, L"a header variable still names it.");
    return false;
  }
  return true;
}

OdString StSymbolTablePlugin::recordName(const OdDbObjectId& record) {
  OdDbSymbolTableRecordPtr open = record.safeOpenObject();
  return open->getName();
}

void StSymbolTablePlugin::eraseOwned(const OdDbObjectId& id) {
  if (id.isNull() || id.isErased()) return;
  OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
  OdDbObjectIdArray owned;
  if (OdDbDictionaryPtr dictionary = OdDbDictionary::cast(object.get()); !dictionary.isNull())
    for (auto it = dictionary->newIterator(); !it->done(); it->next())
      owned.push_back(it->objectId());
  owned.push_back(object->extensionDictionary());
  object->erase();
  object = OdDbObjectPtr();
  for (const OdDbObjectId& entry : owned) {
    OdDbObjectPtr part = entry.isNull() || entry.isErased() ? OdDbObjectPtr() : entry.openObject();
    // An entry another object owns is only listed here, not part of this object.
    if (!part.isNull() && part->ownerId() == id) {
      part = OdDbObjectPtr();
      eraseOwned(entry);
    }
  }
}

bool StSymbolTablePlugin::moveHeaderVariables(const OdString& from, const OdString& to) {
  bool stillNamed = false;
  for (const char* variable : headerVariables()) {
    const OdString key = OdString::fromUtf8(variable);
    OdResBufPtr value = drawing_->getHeaderVariable(key);
    if (value.isNull()) continue;
    OdString current;
    try {
      current = value->getString();
    } catch (const OdError&) {
      continue;  // not a name: this variable cannot name the record
    }
    current.trimRight();
    if (current.iCompare(from) != 0) continue;
    try {
      drawing_->setHeaderVariable(key, OdResBuf::newRb(value->restype(), to).get());
    } catch (const OdError&) {
      stillNamed = true;
    }
  }
  return stillNamed;
}

StReferenceIndex& StSymbolTablePlugin::index() {
  if (!index_) {
    // Reserved records are never replaced, so what refers to them (most entities are on
    // ByLayer linetypes, for one) need not be listed.
    OdDbObjectIdArray records;
    OdDbSymbolTablePtr table = tableOf(drawing_).safeOpenObject();
    for (auto it = table->newIterator(); !it->done(); it->step())
      if (!isReserved(it->getRecord()->getName())) records.push_back(it->getRecordId());
    index_ = std::make_unique<StReferenceIndex>(drawing_, records);
  }
  return *index_;
}

}  // namespace st
