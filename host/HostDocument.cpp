#include "HostDocument.h"

#include "HostPaths.h"

HostDocument::HostDocument(OdString fileName)
    : fileName_(std::move(fileName)), sysVars_(HostPaths::fileNameOf(fileName_)) {}

HostDocument::~HostDocument() = default;

OdString HostDocument::title() const {
  return HostPaths::fileNameOf(fileName_);
}

void HostDocument::setFileName(const OdString& fileName) {
  fileName_ = fileName;
  sysVars_.setDrawingName(HostPaths::fileNameOf(fileName));
}
