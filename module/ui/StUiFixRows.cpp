#include "StUiFixRows.h"

#include <algorithm>
#include <numeric>

#include "StRecordLookup.h"

namespace stui {

int StUiFixRows::preferredFixIndex(const OdArray<st::StFixPtr>& fixes,
                                   const OdString& preferredFile) {
  if (preferredFile.isEmpty()) return -1;
  const OdString preferred = st::getFileName(preferredFile, false);
  for (unsigned i = 0; i < fixes.length(); ++i) {
    if (fixes[i].isNull()) continue;
    if (st::getFileName(fixes[i]->standardsFile(), false).iCollate(preferred) == 0)
      return static_cast<int>(i);
  }
  return -1;
}

StUiFixRows::StUiFixRows(const OdArray<st::StFixPtr>& fixes, int recommendedIndex,
                         const OdString& preferredFile) {
  const int count = static_cast<int>(fixes.length());
  int recommended = recommendedIndex >= 0 && recommendedIndex < count ? recommendedIndex : -1;
  if (recommended < 0) recommended = preferredFixIndex(fixes, preferredFile);

  std::vector<Row> unordered;
  unordered.reserve(fixes.length());
  for (const st::StFixPtr& fix : fixes) {
    Row row;
    row.fix = fix;
    if (!fix.isNull()) {
      row.name = fix->name();
      row.fileName = st::getFileName(fix->standardsFile(), true);
    }
    unordered.push_back(std::move(row));
  }
  std::vector<int> order(unordered.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    const int byFile = unordered[a].fileName.iCollate(unordered[b].fileName);
    return byFile != 0 ? byFile < 0 : unordered[a].name.iCollate(unordered[b].name) < 0;
  });
  rows_.reserve(order.size());
  for (int index : order) {
    if (index == recommended) recommendedRow_ = static_cast<int>(rows_.size());
    rows_.push_back(std::move(unordered[index]));
  }
}

}  // namespace stui
