#include "OdDbLayerTableRecord.h"

#include <cstdlib>

#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"
#include "OdResBuf.h"

ODDB_DEFINE_MEMBERS(OdDbLayerTableRecord, OdDbSymbolTableRecord, "AcDbLayerTableRecord", "LAYER");

namespace {
const char* const kLayer = "AcDbLayerTableRecord";
}  // namespace

void OdDbLayerTableRecord::initNewObject() {
  initFromTemplate(
      "0\nLAYER\n100\nAcDbSymbolTableRecord\n100\nAcDbLayerTableRecord\n2\n\n70\n0\n62\n7\n"
      "6\nContinuous\n370\n-3\n");
}

short OdDbLayerTableRecord::colorIndex() const {
  return static_cast<short>(std::abs(OdDbTagRange(dxf(), kLayer).integer(62, 7)));
}

void OdDbLayerTableRecord::setColorIndex(short index) {
  if (index < 1 || index > 255)
    throw OdError(eInvalidInput, "a layer colour index is 1 to 255, not " + std::to_string(index));
  assertWriteEnabled();
  OdDbTagRange range(dxf(), kLayer);
  range.setInteger(62, isOff() ? -index : index, {70, 2});
  range.remove(420);
  range.remove(430);
}

std::int32_t OdDbLayerTableRecord::trueColor() const {
  OdDbTagRange range(dxf(), kLayer);
  return range.has(420) ? static_cast<std::int32_t>(range.integer(420, 0) & 0xFFFFFF) : -1;
}

void OdDbLayerTableRecord::setTrueColor(std::int32_t rgb) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kLayer).setInteger(420, rgb & 0xFFFFFF, {62});
}

bool OdDbLayerTableRecord::isOff() const {
  return OdDbTagRange(dxf(), kLayer).integer(62, 7) < 0;
}

void OdDbLayerTableRecord::setIsOff(bool off) {
  assertWriteEnabled();
  short index = colorIndex();
  OdDbTagRange(dxf(), kLayer).setInteger(62, off ? -index : index, {70, 2});
}

bool OdDbLayerTableRecord::isPlottable() const {
  return OdDbTagRange(dxf(), kLayer).integer(290, 1) != 0;
}

void OdDbLayerTableRecord::setIsPlottable(bool plot) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kLayer).setInteger(290, plot ? 1 : 0, {6, 62});
}

OdString OdDbLayerTableRecord::linetypeName() const {
  return OdDbTagRange(dxf(), kLayer).text(6, OdString(L"Continuous"));
}

OdDbObjectId OdDbLayerTableRecord::linetypeObjectId() const {
  if (!database()) return OdDbObjectId();
  return database()->impl().recordByName(OdDbDatabaseImpl::kLtype, linetypeName());
}

void OdDbLayerTableRecord::setLinetypeObjectId(const OdDbObjectId& id) {
  if (!database()) throw OdError(eNotImplementedYet, "the layer is in no drawing yet");
  OdString name = database()->impl().checkedRecordName(id, OdDbDatabaseImpl::kLtype);
  assertWriteEnabled();
  OdDbTagRange(dxf(), kLayer).setText(6, name, {62, 70});
}

OdDb::LineWeight OdDbLayerTableRecord::lineWeight() const {
  return static_cast<OdDb::LineWeight>(
      OdDbTagRange(dxf(), kLayer).integer(370, OdDb::kLnWtByLnDefault));
}

void OdDbLayerTableRecord::setLineWeight(OdDb::LineWeight weight) {
  if (weight == OdDb::kLnWtByLayer || weight == OdDb::kLnWtByBlock)
    throw OdError(eInvalidInput, "a layer's lineweight cannot be by layer or by block");
  assertWriteEnabled();
  OdDbTagRange(dxf(), kLayer).setInteger(370, weight, {6, 290});
}

OdDbObjectId OdDbLayerTableRecord::plotStyleNameId() const {
  OdDbTagRange range(dxf(), kLayer);
  std::size_t i = range.find(390);
  OdDbHandle h;
  if (i == DxfObject::npos || !database() || !OdDbHandle::parse(dxf().rawValue(i), h))
    return OdDbObjectId();
  return database()->getOdDbObjectId(h);
}

void OdDbLayerTableRecord::setPlotStyleName(const OdDbObjectId& id) {
  if (!id.isNull() && id.database() != database())
    throw OdError(eWrongDatabase, "the plot style belongs to another drawing");
  assertWriteEnabled();
  OdDbTagRange range(dxf(), kLayer);
  if (id.isNull())
    range.remove(390);
  else
    range.setText(390, id.getHandle().ascii(), {370, 290, 6});
}

std::uint32_t OdDbLayerTableRecord::transparency() const {
  OdResBufPtr rb = xData(L"AcCmTransparency");
  for (OdResBuf* p = rb.get(); p; p = p->next().get())
    if (p->restype() == 1071) return static_cast<std::uint32_t>(p->getInt64());
  return 0;
}

void OdDbLayerTableRecord::setTransparency(std::uint32_t value) {
  OdResBufPtr chain = OdResBuf::newRb(1001, L"AcCmTransparency");
  if (value != 0)
    chain->setNext(
        OdResBuf::newRb(1071, static_cast<std::int64_t>(static_cast<std::int32_t>(value))).get());
  setXData(chain.get());
}

OdString OdDbLayerTableRecord::description() const {
  OdResBufPtr rb = xData(L"AcAecLayerStandard");
  int strings = 0;
  for (OdResBuf* p = rb.get(); p; p = p->next().get())
    if (p->restype() == 1000 && ++strings == 2) return p->getString();
  return OdString();
}

void OdDbLayerTableRecord::setDescription(const OdString& text) {
  OdResBufPtr chain = OdResBuf::newRb(1001, L"AcAecLayerStandard");
  if (!text.isEmpty()) {
    OdResBuf* tail = chain->setNext(OdResBuf::newRb(1000, L"").get());
    tail->setNext(OdResBuf::newRb(1000, text).get());
  }
  setXData(chain.get());
}
