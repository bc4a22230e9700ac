#pragma once

// Internal to TD_Db: the record behind an OdDbObjectId. One stub per object of a database,
// made when the file is indexed; the object itself is made on first open and kept until the
// database goes. Stubs live only in an OdDbStubTable, whose pages tell a stub's database.

#include <cstdint>

#include "OdDbHandle.h"

class OdDbDatabase;
class OdDbObject;

struct OdDbStub {
  enum Flags : std::uint8_t {
    kErased = 1,
    kBlockView = 2,  // a BLOCK entity standing in for the block record a release-12 file lacks
    kDetached = 4,   // backed by an object of no section (a stand-in the file does not hold)
  };
  // Section indexes take 24 bits, which leaves room for the flags in the same word and
  // keeps a stub, one per object, at 24 bytes; the database refuses more sections.
  static constexpr std::uint32_t kNoSection = 0xFFFFFFu;

  OdDbHandle handle;
  OdDbObject* object = nullptr;             // owned by the database once made
  std::uint32_t index = 0;                  // its index in its section (or in the detached list)
  std::uint32_t section : 24 = kNoSection;  // index of its section in the document
  std::uint32_t flags : 8 = 0;

  bool isErased() const noexcept { return (flags & kErased) != 0; }
  // The database the stub belongs to (never null).
  OdDbDatabase* database() const noexcept;
};

static_assert(sizeof(OdDbStub) == 24, "one stub per object: keep it small");
