#pragma once

#include <map>

#include "StMessage.h"

namespace st {

class StMessageImpl : public StMessage {
 public:
  StMessageImpl() = default;

  void init() override;
  int showMessage(int number) override;
  int showError(int number) override;

 private:
  std::map<int, OdString> notices_;
  std::map<int, OdString> errors_;
};

}  // namespace st
