#pragma once

#include "OdArray.h"
#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StError.h"
#include "StExport.h"
#include "StFix.h"
#include "StPropertyFormatter.h"

class OdDbDatabase;

namespace st {

class StManager;

// An image that a plug-in shows beside its name in the list of plug-ins; opaque to the
// engine, which only passes it on.
using StIconHandle = void*;

// A standards plug-in: checks one kind of drawing object (layers, linetypes, text styles...)
// against the standards files associated with a drawing, and fixes what it finds.
//
// Plug-ins live in plug-in libraries, are made by class name and are driven by the check
// manager, which keys them by the name of their run-time class (isA), not by name(). For one
// check the manager calls, in this order:
//   initialize(manager); setupForAudit(...); setObjects({}, true);
//   start(nullptr) when the plug-in becomes current;
//   then repeatedly getError(), next(), done() until done() is true;
//   getRecommendedFix(error) and fixError(error, fix) to fix an error automatically;
//   clear() before the next run.
// A plug-in keeps its current error until next() is called and reports done() once it has no
// further error. Plug-ins derive from StDWSPluginImplBase, which answers every operation with
// "nothing to report"; createObject makes exactly that base (StDWSPluginImpl).
//
// Errors, fixes and databases passed in are not the plug-in's to keep beyond the call unless
// it holds them through a smart pointer; the manager outlives its plug-ins' use of it.
//
// The order of the operations below is part of the contract with plug-in libraries built
// separately: new operations go at the end.
class ST_EXPORT StDWSPlugin : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(StDWSPlugin);

  // The manager that drives the plug-in (not owned); called at registration and at every
  // set-up of a check.
  virtual void initialize(StManager* manager) = 0;
  // The current error, or null when none is pending.
  virtual StErrorPtr getError() = 0;
  // Hands over the drawing to check and the standards to check it against: the standards
  // files' names and the databases read from those of them that exist (not owned; valid
  // until the next set-up).
  virtual void setupForAudit(OdDbDatabase* drawing, const OdString& drawingFileName,
                             const OdArray<OdString>& standardsFileNames,
                             const OdArray<OdDbDatabase*>& standardsDatabases) = 0;
  // The objects to check; the manager passes an empty array with `wholeDrawing` true to have
  // the whole drawing checked.
  virtual void setObjects(const OdArray<OdDbObjectId>& objects, bool wholeDrawing) = 0;
  // Starts the walk over the objects; the manager passes no starting error.
  virtual void start(StError* startingError) = 0;
  // Moves past the current error.
  virtual void next() = 0;
  // Forgets the state of the last run.
  virtual void clear() = 0;
  // The candidate fixes of `error`, and in `recommendedIndex` the index of the recommended
  // one among them, -1 when there is none.
  virtual void getAllFixes(StError* error, OdArray<StFixPtr>& fixes, int& recommendedIndex) = 0;
  // The properties in which `error` and `fix` differ, with their current values.
  // `standardValues` is taken by value, so nothing written into it reaches the caller;
  // callers read the standard values from the fix (StFix::propertyValue).
  virtual void getPropertyDiffs(StError* error, StFix* fix, OdArray<OdString>& propertyNames,
                                OdArray<OdVariant>& currentValues,
                                OdArray<OdVariant> standardValues) = 0;
  // The fix to apply without asking, or null.
  virtual StFixPtr getRecommendedFix(StError* error) = 0;
  // Applies `fix` to the object of `error`; on success the plug-in sets kStErrorFixed in the
  // error's flags, which the caller reads afterwards.
  virtual void fixError(StError* error, StFix* fix) = 0;
  // Texts shown in the list of plug-ins.
  virtual OdString publisher() const = 0;
  virtual OdString purpose() const = 0;
  virtual OdString name() const = 0;
  virtual OdString version() const = 0;
  virtual OdString furtherInfo() const = 0;
  // A query the engine does not ask; the base answers false.
  virtual bool reservedQuery() const = 0;
  // True once the plug-in has no further error in this run.
  virtual bool done() const = 0;
  // The plug-in's image, or null for none. A non-null handle is given to the caller, which
  // frees it once it has copied the image.
  virtual StIconHandle icon() const = 0;
  // The run-time class names of the drawing objects the plug-in checks
  // ("AcDbLayerTableRecord"); the manager watches modifications of objects of these classes.
  // The reference stays valid as long as the plug-in.
  virtual const OdArray<OdString>& classNames() const = 0;
  // A formatter for the plug-in's property values, or null to have the engine's general
  // formatting used.
  virtual StPropertyFormatterPtr propertyFormatter() const = 0;
};

using StDWSPluginPtr = OdSmartPtr<StDWSPlugin>;

}  // namespace st
