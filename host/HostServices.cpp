#include "HostServices.h"

#include "HostFormat.h"

void HostServices::cmdPrintf(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  OdString text = hostVFormat(format, args);
  va_end(args);
  cmdPrint(text);
}
