#pragma once

#include <vector>

#include "OdArray.h"
#include "OdString.h"
#include "StFix.h"

namespace stui {

// The rows of the Check Standards dialog's replacement list, decided without a screen: the
// candidate fixes of one problem in the order the list shows them, and which of them is
// recommended.
//
// Rows are ordered by the standards file's name, then by the replacement's name, both in the
// user's collation with case ignored (OdString::iCollate); rows equal in both keep the
// plug-in's order. The recommended fix is the plug-in's own recommendation when it made one;
// otherwise the first fix, in the plug-in's order, from the preferred standards file (its
// name without folder and extension matched by iCollate); otherwise there is none.
//
// The rows hold references to their fixes, so a fix stays valid while its row exists.
class StUiFixRows {
 public:
  struct Row {
    st::StFixPtr fix;   // null for a null entry of the plug-in's list
    OdString name;      // the replacement's name
    OdString fileName;  // the standards file's name with its extension, no folder
  };

  StUiFixRows() = default;
  // `fixes` in the plug-in's order; `recommendedIndex` the plug-in's recommendation among
  // them (-1, or any index outside the list, for none); `preferredFile` the path of the
  // preferred standards file, empty for none.
  StUiFixRows(const OdArray<st::StFixPtr>& fixes, int recommendedIndex,
              const OdString& preferredFile);

  const std::vector<Row>& rows() const { return rows_; }
  // The index in rows() of the recommended fix; -1 when none is.
  int recommendedRow() const { return recommendedRow_; }
  // The index in the plug-in's list of the fix from `preferredFile`, as above; -1 when no fix
  // comes from it or `preferredFile` is empty.
  static int preferredFixIndex(const OdArray<st::StFixPtr>& fixes, const OdString& preferredFile);

 private:
  std::vector<Row> rows_;
  int recommendedRow_ = -1;
};

}  // namespace stui
