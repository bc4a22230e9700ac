#pragma once

#include "OdArray.h"
#include "StError.h"
#include "StExport.h"
#include "StFix.h"

namespace st {

// What a plug-in implements, besides StDWSPlugin, when its fixes of an error come ranked
// best first and it can make only the first few of them. A report shows a handful of the
// thousands of replacements a non-standard name may have; making every fix object only to
// drop most of them is what such a report would otherwise spend its time and memory on.
//
// A caller finds it with dynamic_cast from the plug-in; a plug-in without it is asked
// getAllFixes. The interactive check still asks getAllFixes, which gives the whole list.
class ST_EXPORT StRankedFixes {
 public:
  virtual ~StRankedFixes();

  // The first `limit` fixes of the list getAllFixes gives for `error`, in its order, made
  // without making the rest. When the recommended fix ranks below them it takes the last
  // place, so that it is always among them. `recommendedIndex` is its place in `fixes`, -1
  // when there is none; `total` is the length of the whole list. An error the plug-in did not
  // report (or no longer reports) gives no fixes and a total of 0.
  virtual void getFirstFixes(StError* error, unsigned limit, OdArray<StFixPtr>& fixes,
                             int& recommendedIndex, unsigned& total) = 0;

 protected:
  StRankedFixes() = default;
  StRankedFixes(const StRankedFixes&) = default;
  StRankedFixes& operator=(const StRankedFixes&) = default;
};

}  // namespace st
