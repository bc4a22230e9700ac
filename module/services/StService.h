#pragma once

#include "StExport.h"

namespace st {

// The base of the module's internal services. The application services (StAppServices)
// create each service once, call init() once, in service-index order, and delete the service
// when they go; nobody else owns or frees one.
class ST_EXPORT StService {
 public:
  virtual ~StService();
  // Brings the service up; may reach services of a lower index, which are initialised
  // already.
  virtual void init() = 0;

 protected:
  StService() = default;
  StService(const StService&) = default;
  StService& operator=(const StService&) = default;
};

}  // namespace st
