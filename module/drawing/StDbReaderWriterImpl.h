#pragma once

#include "StDbReaderWriter.h"

namespace st {

// The drawing-resident association of standards files (see StDbReaderWriter).
class StDbReaderWriterImpl : public StDbReaderWriter {
 public:
  bool setDatabase(OdDbDatabase* db) override;
  bool hasStandardsEntry() override;
  bool readStandardFiles(OdArray<OdString>& files) override;
  bool writeStandardFiles(const OdArray<OdString>& files) override;

 protected:
  StDbReaderWriterImpl() = default;

 private:
  OdDbDatabase* db_ = nullptr;  // not owned
};

}  // namespace st
