#include "OdDbXrecord.h"

#include "DxfDocument.h"
#include "OdDbTagRange.h"

ODDB_DEFINE_MEMBERS(OdDbXrecord, OdDbObject, "AcDbXrecord", "XRECORD");

void OdDbXrecord::initNewObject() {
  initFromTemplate("0\nXRECORD\n100\nAcDbXrecord\n280\n1\n");
}

std::pair<std::size_t, std::size_t> OdDbXrecord::dataBounds() const {
  const DxfObject& obj = dxf();
  std::size_t begin = 1;
  for (std::size_t i = 1; i < obj.size(); i = odDbSkipGroup(obj, i)) {
    if (obj.code(i) == 100) {
      begin = i + 1;
      break;
    }
  }
  if (begin == 1) {  // no marker: the data starts after handle and owner
    while (begin < obj.size() &&
           (obj.code(begin) == 5 || obj.code(begin) == 330 || obj.code(begin) == 102))
      begin = odDbSkipGroup(obj, begin);
  }
  // The duplicate-record cloning flag leads the data in files of release 2000 and later.
  if (begin < obj.size() && obj.code(begin) == 280) ++begin;
  std::size_t end = begin;
  while (end < obj.size() && obj.code(end) != 1001) ++end;
  return {begin, end};
}

OdResBufPtr OdDbXrecord::rbChain() const {
  auto [begin, end] = dataBounds();
  return OdResBuf::fromTags(dxf(), begin, end);
}

void OdDbXrecord::setFromRbChain(const OdResBuf* chain) {
  assertWriteEnabled();
  std::vector<DxfTag> tags = OdResBuf::toTags(dxfDocument(), chain);
  auto [begin, end] = dataBounds();
  DxfObject& obj = dxf();
  for (std::size_t i = end; i-- > begin;) obj.eraseTag(i);
  for (std::size_t k = 0; k < tags.size(); ++k) obj.insertTag(begin + k, tags[k]);
}
