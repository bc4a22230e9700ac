#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>

#include "OdDb.h"
#include "OdDbMacros.h"
#include "OdDbObjectId.h"
#include "OdString.h"

class DxfDocument;
class DxfObject;
class OdResBuf;
using OdResBufPtr = OdSmartPtr<OdResBuf>;

// An object of a drawing. Its group-code/value tags are its state: every accessor reads or
// writes them, so an object nobody changed is written back exactly as it was read.
//
// Life cycle. An object of a database is made when first opened (OdDbObjectId::openObject)
// and belongs to the database from then on; the smart pointer an open returns closes it when
// its last reference goes, and the database frees it when the database goes (close every
// object before). A new object (createObject of its class) belongs to no database until an
// owner adds it (OdDbDictionary::setAt, OdDbSymbolTable::add,
// OdDbBlockTableRecord::appendOdDbEntity); it is writable until then, and freed with its
// last reference if it is never added.
//
// Changing an object needs it open for write; a setter called on an object open for read
// throws OdError(eNotOpenForWrite). Closing an object that was changed sends objectModified
// to the database's reactors; reading never sends anything.
class OdDbObject : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbObject);

  void addRef() override;
  // Drops one reference: closes the object when it was the last of a database-resident
  // object, frees it when it was the last of an object of no database.
  void release() override;
  long numRefs() const override { return refs_; }

  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;

  OdDbObjectId objectId() const noexcept { return OdDbObjectId(stub_); }
  OdDbHandle getDbHandle() const noexcept;
  // The database, or null while the object belongs to none.
  OdDbDatabase* database() const noexcept;
  // The owner: the object named by the owner reference (group 330), or for objects that a
  // file places by position (table records, entities of old files) the table or block that
  // holds them; null when there is none.
  OdDbObjectId ownerId() const;

  bool isReadEnabled() const noexcept { return mode_ != OdDb::kNotOpen || !stub_; }
  bool isWriteEnabled() const noexcept { return mode_ == OdDb::kForWrite || !stub_; }
  OdDb::OpenMode openMode() const noexcept { return stub_ ? mode_ : OdDb::kForWrite; }
  // True once a setter changed the object since it was opened.
  bool isModified() const noexcept { return modified_; }
  bool isErased() const noexcept;
  bool isNewObject() const noexcept { return !stub_; }
  // Throws OdError(eNotOpenForWrite) unless the object may be changed now, and marks it as
  // changed (sending objectOpenedForModify the first time). Every setter calls it.
  void assertWriteEnabled();
  // Throws OdError(eNotOpenForRead) when the object is not open.
  void assertReadEnabled() const;

  // Erases (or with false unerases) the object; needs it open for write. An erased object is
  // left out of iterators and out of the saved file; erasing an entry of a dictionary takes
  // it out of the dictionary (unerasing does not put it back). Sends objectErased only: an
  // erased object does not count as modified.
  OdResult erase(bool erasing = true);

  // The extension dictionary named by the object's 102 {ACAD_XDICTIONARY group, or null.
  OdDbObjectId extensionDictionary() const;
  // Makes the extension dictionary when the object has none (it must be open for write and
  // belong to a database of release 13 or later; else OdError eNotOpenForWrite or
  // eNotImplementedYet). Does nothing when it exists.
  void createExtensionDictionary();

  // The extended data of `appName` as a chain starting with its 1001 buffer, or of every
  // application when `appName` is empty; null when there is none.
  OdResBufPtr xData(const OdString& appName = OdString()) const;
  // Replaces the extended data of the application named by the chain's first (1001) buffer;
  // a chain of that buffer alone removes it. Throws OdError(eInvalidInput) for a chain that
  // does not start with 1001.
  void setXData(const OdResBuf* chain);

  // The DXF type of the object ("LAYER", "DICTIONARY", "LINE").
  OdString dxfType() const;

  // Replaces the tags of a new object (one in no drawing yet) by DXF text lines: code, value,
  // code, value..., the type (group 0) first, without the handle and the owner, which the
  // drawing gives when the object joins it. createObject of each class starts from it; an
  // entity of a type without a class of its own (LINE, ARC, HATCH...) is an OdDbEntity given
  // its tags so. Values are checked by group code as a file's are. Throws OdError
  // (eInvalidInput, naming the line) for an object in a drawing, a line that is no group code,
  // a code without its value, a value its code cannot hold or a first tag that is no type;
  // the object is unchanged then.
  void initFromTemplate(std::string_view lines);

  // Internal to TD_Db: the object's tags (the database's, or its own while it is new).
  DxfObject& dxf() const;
  DxfDocument& dxfDocument() const;
  OdDbStub* stub() const noexcept { return stub_; }
  // Binds an object the database just made to its stub; it starts closed, unreferenced.
  void attachResident(OdDbStub* stub) noexcept {
    stub_ = stub;
    refs_ = 0;
  }
  // Frees an object of a database that is going.
  static void destroy(OdDbObject* object) noexcept { delete object; }
  // Called by OdDbObjectId::openObject: records an open in `mode` (see its contract).
  void open(OdDb::OpenMode mode);
  // Makes the new object resident: its tags move into `db`'s document as object `index` of
  // section `section` with a fresh handle (written in group `handleCode`) and owner `owner`.
  // Returns the new id. Sends objectAppended; the object stays open for write until its
  // references go.
  OdDbObjectId makeResident(OdDbDatabase* db, std::size_t section, std::size_t index,
                            const OdDbObjectId& owner);

 protected:
  OdDbObject();
  ~OdDbObject() override;
  // Sets up the tags of an object made by createObject. The base gives an empty object.
  virtual void initNewObject();

 private:
  void close();

  OdDbStub* stub_ = nullptr;
  long refs_ = 1;
  OdDb::OpenMode mode_ = OdDb::kNotOpen;
  bool modified_ = false;
  bool notifiedModify_ = false;
  // The tags of a new object, in a small document of their own.
  std::unique_ptr<DxfDocument> newDoc_;
  std::unique_ptr<DxfObject> newObj_;
};

using OdDbObjectPtr = OdSmartPtr<OdDbObject>;
