#pragma once

#include <cstddef>
#include <functional>

#include "OdArray.h"
#include "OdDb.h"
#include "OdDbHandle.h"
#include "OdResult.h"
#include "OdSmartPtr.h"

class OdDbDatabase;
class OdDbObject;
struct OdDbStub;
using OdDbObjectPtr = OdSmartPtr<OdDbObject>;

// The identity of an object of a database: a cheap, copyable handle to the database's record
// of the object, valid as long as the database lives. Two ids are equal when they name the
// same object. A default-constructed id is null.
class OdDbObjectId {
 public:
  OdDbObjectId() noexcept = default;
  explicit OdDbObjectId(OdDbStub* stub) noexcept : stub_(stub) {}

  static const OdDbObjectId kNull;

  bool isNull() const noexcept { return stub_ == nullptr; }
  bool isValid() const noexcept { return stub_ != nullptr; }
  void setNull() noexcept { stub_ = nullptr; }

  // The object's handle; the null handle for a null id.
  OdDbHandle getHandle() const noexcept;
  // The database the object belongs to, or null for a null id.
  OdDbDatabase* database() const noexcept;
  // True when the object is erased (false for a null id).
  bool isErased() const noexcept;

  // Opens the object and returns it; the returned pointer closes it when the last reference
  // to it goes. Throws OdError:
  //  - eNullObjectId for a null id;
  //  - eWasErased for an erased object unless `openErased`;
  //  - eWasOpenedForWrite when opening for write an object that is already open for write.
  // Opening for read always shares the object, also while someone writes it; opening for
  // write while others read it makes it writable for all of them.
  OdDbObjectPtr safeOpenObject(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;
  // The same, but answers null instead of throwing.
  OdDbObjectPtr openObject(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;
  // The same, with the result code of the failure (eOk on success; `object` is then set).
  OdResult openObject(OdDbObjectPtr& object, OdDb::OpenMode mode = OdDb::kForRead,
                      bool openErased = false) const;

  OdDbStub* stub() const noexcept { return stub_; }

  friend bool operator==(const OdDbObjectId& a, const OdDbObjectId& b) noexcept {
    return a.stub_ == b.stub_;
  }
  friend bool operator<(const OdDbObjectId& a, const OdDbObjectId& b) noexcept;

 private:
  OdDbStub* stub_ = nullptr;
};

using OdDbObjectIdArray = OdArray<OdDbObjectId>;

template <>
struct std::hash<OdDbObjectId> {
  std::size_t operator()(const OdDbObjectId& id) const noexcept {
    return std::hash<const void*>()(id.stub());
  }
};
