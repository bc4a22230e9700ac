#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "OdDbDatabase.h"
#include "OdDbSymbolTableRecord.h"
#include "StDWSPluginImplBase.h"
#include "StRankedFixes.h"
#include "StReferenceIndex.h"

namespace st {

// A record's compared properties, as (display name, value) in display order. A value the
// record leaves out is listed as its default; a property the record's release or the checked
// drawing's cannot store is left out (or an empty OdVariant) and is not compared.
using StPropertyList = std::vector<std::pair<OdString, OdVariant>>;

// The common base of the plug-ins that check the records of one symbol table by name against
// the same table of every standards file. Each record (xref-dependent ones skipped) gives at
// most one error:
//  - its name is in some standards file but no standards file holds it with the same
//    properties: an error tagged kTagProperties with one fix per standards file holding the
//    name (the preferred file's recommended when it is one of them, else the first's); fixing
//    gives the record the standard's properties;
//  - no standards file has its name (and it is not a reserved record, see isReserved): an
//    error tagged kTagNonStandardName whose fixes are every record of the kind in every
//    standards file, one recommended only when a single standard name matches it ignoring
//    case and separators. These fixes come ranked by how close their names are to the
//    record's: first those equal to it ignoring case and separators (blanks, '-', '_', '.'),
//    then by edit distance of the case-folded names, ties by standards-file order and then
//    name. getFirstFixes makes only the first of them. Fixing, when the drawing has no record
//    of the chosen name, renames the record in place and gives it the standard's properties:
//    it keeps its handle, and only what names it by its old name (entities, records, objects,
//    extension dictionaries, extended data, header variables) changes. When the drawing has
//    such a record, fixing moves every reference to it: every pointer and every name, and
//    erases the old record with its extension dictionary. A record that is the container of
//    any other object (an object it is a reactor of) is then not replaced at all, and a record
//    something still refers to after the move is kept: either way the error is left unfixed
//    and its description says why.
// Errors carry kStErrorIgnored when the record has an ignore mark and kStErrorFixable when
// they have fixes (kStErrorAlwaysReported when they have none); a fix that succeeds sets
// kStErrorFixed.
//
// Errors are found one at a time, as next() moves on, so that what earlier fixes changed is
// seen. start() places the walk before the first error; next() moves to it.
//
// A derived plug-in names its table, reads and applies properties;
// everything else, finding and moving the references to its records included, happens here.
class StSymbolTablePlugin : public StDWSPluginImplBase<StDWSPlugin>, public StRankedFixes {
 public:
  static constexpr std::uint64_t kTagProperties = 1;
  static constexpr std::uint64_t kTagNonStandardName = 2;

  StErrorPtr getError() override;
  void setupForAudit(OdDbDatabase* drawing, const OdString& drawingFileName,
                     const OdArray<OdString>& standardsFileNames,
                     const OdArray<OdDbDatabase*>& standardsDatabases) override;
  void setObjects(const OdArray<OdDbObjectId>& objects, bool wholeDrawing) override;
  void start(StError* startingError) override;
  void next() override;
  void clear() override;
  // Fixes of the current error are kept until next(); for another error they are made anew.
  void getAllFixes(StError* error, OdArray<StFixPtr>& fixes, int& recommendedIndex) override;
  // The properties whose current and standard values differ, with the current values.
  void getPropertyDiffs(StError* error, StFix* fix, OdArray<OdString>& propertyNames,
                        OdArray<OdVariant>& currentValues,
                        OdArray<OdVariant> standardValues) override;
  StFixPtr getRecommendedFix(StError* error) override;
  void getFirstFixes(StError* error, unsigned limit, OdArray<StFixPtr>& fixes,
                     int& recommendedIndex, unsigned& total) override;
  // Applies a fix of an error of this plug-in; an error or fix of another origin, a record
  // that is gone or a change the drawing refuses leaves the error unfixed.
  void fixError(StError* error, StFix* fix) override;
  bool done() const override;
  StPropertyFormatterPtr propertyFormatter() const override;

 protected:
  // `kind` names the kind of record in texts ("layer"), `caption` heads the column of
  // replacements ("Layer"), `className` is the run-time class of the records.
  StSymbolTablePlugin(const OdString& displayName, const OdString& purpose, const OdString& kind,
                      const OdString& caption, const OdString& className);

  // The table of the plug-in's kind in `db` (null when the drawing has none).
  virtual OdDbObjectId tableOf(OdDbDatabase* db) const = 0;
  // A record every drawing has (layer "0", "Standard"...): compared only with the standards
  // files that define it, never reported as non-standard and never erased.
  virtual bool isReserved(const OdString& name) const = 0;
  // False for records the plug-in leaves alone altogether (and never offers as fixes).
  virtual bool isChecked(OdDbSymbolTableRecord& record) const { return true; }
  // The compared properties of `record` (open for read).
  virtual void readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const = 0;
  // Gives the drawing's `record` the properties of `standard`, a record of the same name in
  // a standards drawing. False when that cannot be done; the kernel's OdError may pass.
  virtual bool applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) = 0;
  // The header variables that name a record of the kind ("$CLAYER"); a replacement moves
  // them and a record one of them names is never erased.
  virtual std::vector<const char*> headerVariables() const { return {}; }

  OdDbDatabase* drawing() const { return drawing_; }

 private:
  struct Standard {
    OdDbDatabase* db = nullptr;
    OdString path;
  };
  // Where a fix comes from: a record of a standards file and the values it stands for.
  struct FixSource {
    std::size_t standard = 0;
    OdDbObjectId id;
    OdString name;
    std::shared_ptr<const StPropertyList> properties;
  };
  // An error with what its fixes are made of. Fixes are made when first asked for: a
  // non-standard name has every record of every standards file as a fix, and an automatic
  // fix needs only the recommended one.
  struct Finding {
    StErrorPtr error;
    OdString name;                   // the record's, which name errors rank candidates by
    std::vector<OdString> names;     // the properties each fix carries, as the error lists them
    std::vector<FixSource> holders;  // property errors: the files holding the name
    bool everyCandidate = false;     // name errors: every candidate of every file
    std::optional<FixSource> recommendedSource;
    bool built = false;
    OdArray<StFixPtr> fixes;  // the whole ranked list, once built
    int recommended = -1;     // the recommended fix's place in `fixes`, once built
  };
  // The records of one standards file a non-standard name may be replaced with, with their
  // names folded for the matching that recommends and ranks them (lowerNames and looseNames
  // run parallel to records).
  struct Candidates {
    std::vector<FixSource> records;
    std::vector<std::wstring> lowerNames;
    std::vector<std::wstring> looseNames;
    std::unordered_map<OdString, std::vector<std::size_t>> byLowerName;
    std::unordered_map<OdString, std::vector<std::size_t>> byLooseName;
  };

  // The finding for the record `id`; false when it conforms or is not checked.
  bool evaluate(const OdDbObjectId& id, Finding& finding);
  bool findPropertyError(OdDbSymbolTableRecord& record, const StPropertyList& current,
                         Finding& finding);
  void findNameError(OdDbSymbolTableRecord& record, const StPropertyList& current,
                     Finding& finding);
  StErrorPtr newError(OdDbSymbolTableRecord& record, std::uint64_t tag, const OdString& title,
                      const OdString& description, const StPropertyList& properties);
  StFixPtr newFix(const FixSource& source, const std::vector<OdString>& names);
  void buildFixes(Finding& finding);
  // The sources of the first `limit` fixes of `finding` in rank order, the recommended one
  // always among them (see getFirstFixes); `total` is the number of all its fixes. The
  // pointers are into `finding` and the candidate lists.
  std::vector<const FixSource*> rankedSources(const Finding& finding, std::size_t limit,
                                              std::size_t& total);
  // The current finding when `error` is its error, else `error`'s record evaluated anew into
  // `other`; null when the record no longer has that error.
  Finding* findingFor(StError* error, Finding& other);
  const Candidates& candidates(std::size_t standard);
  // The index of the preferred standards file in standards_, or -1.
  int preferredStandard() const;
  bool isStandard(OdDbDatabase* db) const;
  // Replaces `record` as the class comment tells; false (with the reason added to `error`'s
  // description) when it is not replaced.
  bool replaceName(const OdDbObjectId& record, StFix& fix, StError& error);
  // The replacement when the drawing has no record of the standard's name: `record` is
  // renamed and given the standard's properties; false as replaceName.
  bool renameInPlace(const OdDbObjectId& record, StFix& fix, StError& error);
  // Whether `record` can be replaced by the drawing's record `name` (or renamed to it when
  // the drawing has none); when not, `why` says so.
  bool canReplace(const OdDbObjectId& record, const OdString& name, OdString& why);
  // Whether `record` was made after this check was set up (copied in by a fix).
  bool isNewThisCheck(const OdDbObjectId& record) const;
  static OdString recordName(const OdDbObjectId& record);
  // Erases `id` with everything it owns: a dictionary's entries, extension dictionaries.
  void eraseOwned(const OdDbObjectId& id);
  // Adds to `error`'s description why the fix left the problem in place.
  void explainUnfixed(StError& error, const OdString& why) const;
  // Points the header variables naming `from` at the name of `to`; true when one still
  // names `from` afterwards.
  bool moveHeaderVariables(const OdString& from, const OdString& to);
  StReferenceIndex& index();

  OdString kind_;
  OdString caption_;
  OdDbDatabase* drawing_ = nullptr;
  std::uint64_t firstNewHandle_ = 0;  // the drawing's next handle when the check was set up
  std::vector<Standard> standards_;
  std::vector<std::unique_ptr<Candidates>> candidates_;
  OdString preferredName_;
  OdDbObjectIdArray objects_;
  bool wholeDrawing_ = true;
  OdDbObjectIdArray queue_;
  std::size_t position_ = 0;
  bool started_ = false;
  Finding current_;
  std::unique_ptr<StReferenceIndex> index_;
};

}  // namespace st
