// A program that keeps one reference too many to a counted object and ends: the leak test
// runs it to see that such a fault is reported by the leak checker of the sanitizer build.
//
//   rx_leak_probe leak|balanced

#include <cstring>

#include "OdRxMacros.h"
#include "OdRxObject.h"

namespace {

class RxLeaked : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(RxLeaked);
  char payload[4096] = {};  // large enough to stand out in a report
};

ODRX_DEFINE_MEMBERS(RxLeaked, OdRxObject);

}  // namespace

int main(int argc, char** argv) {
  const bool leak = argc == 2 && std::strcmp(argv[1], "leak") == 0;
  RxLeaked::rxInit();
  {
    OdSmartPtr<RxLeaked> object = RxLeaked::createObject();
    if (leak) object->addRef();  // the fault: a reference nobody releases
  }
  RxLeaked::rxUninit();
  return 0;
}
