#pragma once

#include "StDWSPlugin.h"

namespace st {

// The common base of standards plug-ins: implements every operation of StDWSPlugin with "no
// error, nothing to do", keeps the texts shown in the list of plug-ins, the class names the
// plug-in checks and the manager it was given.
//
// TInterface is the interface implemented: StDWSPlugin, or an interface derived from it. A
// plug-in derives from StDWSPluginImplBase<StDWSPlugin> (or its own interface), sets its texts
// through the constructor, appends to classNames_ the run-time class names of the objects it
// checks, and overrides what it does. Counting is added by OdRxObjectImpl, as for every
// run-time class.
//
// A plug-in that overrides nothing reports no error and is done at once.
template <class TInterface>
class StDWSPluginImplBase : public TInterface {
 public:
  void initialize(StManager* manager) override { manager_ = manager; }
  StErrorPtr getError() override { return StErrorPtr(); }
  void setupForAudit(OdDbDatabase* drawing, const OdString& drawingFileName,
                     const OdArray<OdString>& standardsFileNames,
                     const OdArray<OdDbDatabase*>& standardsDatabases) override {}
  void setObjects(const OdArray<OdDbObjectId>& objects, bool wholeDrawing) override {}
  void start(StError* startingError) override {}
  void next() override {}
  void clear() override {}
  void getAllFixes(StError* error, OdArray<StFixPtr>& fixes, int& recommendedIndex) override {}
  void getPropertyDiffs(StError* error, StFix* fix, OdArray<OdString>& propertyNames,
                        OdArray<OdVariant>& currentValues,
                        OdArray<OdVariant> standardValues) override {}
  StFixPtr getRecommendedFix(StError* error) override { return StFixPtr(); }
  void fixError(StError* error, StFix* fix) override {}
  OdString publisher() const override { return publisher_; }
  OdString purpose() const override { return purpose_; }
  OdString name() const override { return name_; }
  OdString version() const override { return version_; }
  OdString furtherInfo() const override { return furtherInfo_; }
  bool reservedQuery() const override { return false; }
  bool done() const override { return true; }
  StIconHandle icon() const override { return nullptr; }
  const OdArray<OdString>& classNames() const override { return classNames_; }
  StPropertyFormatterPtr propertyFormatter() const override { return StPropertyFormatterPtr(); }

 protected:
  StDWSPluginImplBase() = default;
  StDWSPluginImplBase(const OdString& name, const OdString& purpose, const OdString& version,
                      const OdString& furtherInfo, const OdString& publisher)
      : name_(name),
        purpose_(purpose),
        version_(version),
        furtherInfo_(furtherInfo),
        publisher_(publisher) {}

  // The manager given to initialize, or null before it; not owned.
  StManager* manager() const { return manager_; }

  OdString name_;
  OdString purpose_;
  OdString version_;
  OdString furtherInfo_;
  OdString publisher_;
  OdArray<OdString> classNames_;

 private:
  StManager* manager_ = nullptr;
};

}  // namespace st
