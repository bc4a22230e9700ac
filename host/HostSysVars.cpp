#include "HostSysVars.h"

#include "HostUser.h"
#include "OdError.h"

const std::vector<HostSysVars::Definition>& HostSysVars::definitions() {
  static const std::vector<Definition> defs = {
      {"STANDARDSVIOLATION", kHostRtInt32, false, 0, 2, 2},
      {"DWGNAME", kHostRtString, true, 0, 0, 0},
      {"LOGINNAME", kHostRtString, true, 0, 0, 0},
  };
  return defs;
}

const HostSysVars::Definition* HostSysVars::find(const OdString& name) {
  for (const Definition& def : definitions())
    if (name.iCompare(OdString(def.name)) == 0) return &def;
  return nullptr;
}

HostSysVars::HostSysVars(OdString drawingName) : drawingName_(std::move(drawingName)) {
  for (const Definition& def : definitions())
    if (def.type != kHostRtString) ints_[def.name] = def.defaultInt;
}

OdResBufPtr HostSysVars::get(const OdString& name) const {
  const Definition* def = find(name);
  if (!def) return nullptr;
  if (def->type == kHostRtString) {
    OdString text = std::string(def->name) == "DWGNAME" ? drawingName_ : HostUser::loginName();
    return OdResBuf::newRb(def->type, text);
  }
  int value = ints_.at(def->name);
  if (def->type == kHostRtReal) return OdResBuf::newRb(def->type, static_cast<double>(value));
  return OdResBuf::newRb(def->type, value);
}

OdResult HostSysVars::set(const OdString& name, const OdResBuf* value, OdString* error) {
  auto fail = [&](OdResult code, const std::string& why) {
    if (error) *error = OdString::fromUtf8(why);
    return code;
  };
  const Definition* def = find(name);
  const std::string shown = name.toUtf8();
  if (!def) return fail(eInvalidKey, "unknown system variable " + shown);
  if (def->readOnly) return fail(eNotOpenForWrite, "system variable " + shown + " is read only");
  if (!value) return fail(eNullPtr, "no value given for system variable " + shown);
  if (value->restype() != def->type)
    return fail(eInvalidInput, "system variable " + shown + " takes a value of type " +
                                   std::to_string(def->type) + ", not " +
                                   std::to_string(value->restype()));
  std::int64_t n = 0;
  try {
    n = value->getInt64();
  } catch (const OdError&) {
    return fail(eInvalidInput, "the value given for system variable " + shown + " is not a number");
  }
  if (n < def->minimum || n > def->maximum)
    return fail(eInvalidInput, "value " + std::to_string(n) + " of system variable " + shown +
                                   " is outside " + std::to_string(def->minimum) + ".." +
                                   std::to_string(def->maximum));
  ints_[def->name] = static_cast<int>(n);
  return eOk;
}
