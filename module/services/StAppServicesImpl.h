#pragma once

#include <map>
#include <memory>

#include "StAppServices.h"
#include "StService.h"

namespace st {

// The services object: an ordered map from service index to the service it owns.
class StAppServicesImpl : public StAppServices {
 public:
  StService* getService(int index) override;

  // Stores `service` under `index`, replacing (and deleting) one stored there already.
  void setService(int index, std::unique_ptr<StService> service);
  // Creates the module's services, each under its index.
  void populate();
  // Calls init() of every service, in ascending index order.
  void initAll();

 protected:
  StAppServicesImpl() = default;
  // Destroys the services in ascending index order.
  ~StAppServicesImpl() override;

 private:
  std::map<int, std::unique_ptr<StService>> services_;
};

}  // namespace st
