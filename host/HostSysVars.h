#pragma once

#include <map>
#include <string>
#include <vector>

#include "OdResBuf.h"
#include "OdResult.h"
#include "OdString.h"

// Result-buffer types of system-variable values.
enum HostSysVarType : int {
  kHostRtReal = 5001,    // double
  kHostRtShort = 5003,   // 16-bit integer
  kHostRtString = 5005,  // text
  kHostRtInt32 = 5010,   // 32-bit integer
};

// The system variables of one document: named values the host defines, read and written as
// result buffers of the variable's type. Names are matched without regard to case.
//
// Defined variables:
//   STANDARDSVIOLATION  kHostRtInt32 0..2, default 2: how standards violations are announced
//                       (0 not at all, 1 by an alert, 2 by the status-bar icon)
//   DWGNAME             kHostRtString, read only: the file name of the document's drawing
//   LOGINNAME           kHostRtString, read only: the user's login name
class HostSysVars {
 public:
  struct Definition {
    const char* name;
    int type;
    bool readOnly;
    int minimum;  // integer variables only
    int maximum;
    int defaultInt;
  };
  static const std::vector<Definition>& definitions();
  // The definition of `name`, or null for a name the host does not define.
  static const Definition* find(const OdString& name);

  // `drawingName` is what DWGNAME reads.
  explicit HostSysVars(OdString drawingName);

  // A new result buffer holding the value, or null when `name` is not defined.
  OdResBufPtr get(const OdString& name) const;
  // Sets the value from the first buffer of `value`. Returns eOk, or: eInvalidKey for a name
  // that is not defined, eNotOpenForWrite for a read-only variable, eNullPtr for no buffer,
  // eInvalidInput for a buffer of another type or a value out of range. `error`, when
  // given, receives a lower-case sentence saying what was wrong.
  OdResult set(const OdString& name, const OdResBuf* value, OdString* error = nullptr);

  void setDrawingName(const OdString& drawingName) { drawingName_ = drawingName; }

 private:
  OdString drawingName_;
  std::map<std::string, int> ints_;  // by definition name
};
