#pragma once

namespace stui {

// The root of the interfaces the module's dialogs hand to their parts (pages, panes): an
// object reached through one of them is never deleted through it by the part, but the
// destructor is virtual so an owner may hold one by its interface.
class IStUiUnknown {
 public:
  virtual ~IStUiUnknown() = default;
};

}  // namespace stui
