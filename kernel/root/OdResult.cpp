#include "OdResult.h"

const char* odResultName(OdResult code) {
  switch (code) {
    case eOk:
      return "eOk";
    case eNotImplementedYet:
      return "eNotImplementedYet";
    case eInvalidInput:
      return "eInvalidInput";
    case eAmbiguousInput:
      return "eAmbiguousInput";
    case eInvalidKey:
      return "eInvalidKey";
    case eKeyNotFound:
      return "eKeyNotFound";
    case eDuplicateKey:
      return "eDuplicateKey";
    case eInvalidIndex:
      return "eInvalidIndex";
    case eNotThatKindOfClass:
      return "eNotThatKindOfClass";
    case eFileNotFound:
      return "eFileNotFound";
    case eFileAccessError:
      return "eFileAccessError";
    case eFileWriteError:
      return "eFileWriteError";
    case eBadDxfFile:
      return "eBadDxfFile";
    case eDwgNotSupported:
      return "eDwgNotSupported";
    case eUnknownCodePage:
      return "eUnknownCodePage";
    case eNotOpenForRead:
      return "eNotOpenForRead";
    case eNotOpenForWrite:
      return "eNotOpenForWrite";
    case eWasOpenedForWrite:
      return "eWasOpenedForWrite";
    case eWasErased:
      return "eWasErased";
    case eCannotOpenTable:
      return "eCannotOpenTable";
    case eNullObjectId:
      return "eNullObjectId";
    case eWasOpenedForRead:
      return "eWasOpenedForRead";
    case eDuplicateRecordName:
      return "eDuplicateRecordName";
    case eAlreadyRegistered:
      return "eAlreadyRegistered";
    case eLoadFailed:
      return "eLoadFailed";
    case eNoEntryPoint:
      return "eNoEntryPoint";
    case eWrongDatabase:
      return "eWrongDatabase";
    case eOutOfMemory:
      return "eOutOfMemory";
    case eNullPtr:
      return "eNullPtr";
    case eCloneFailed:
      return "eCloneFailed";
    case eNotInitializedYet:
      return "eNotInitializedYet";
  }
  // A number stored by a newer build, or memory gone wrong: still a readable name.
  return "eUnknownResult";
}

const char* odResultMessage(OdResult code) {
  switch (code) {
    case eOk:
      return "no error";
    case eNotImplementedYet:
      return "not implemented yet";
    case eInvalidInput:
      return "invalid input";
    case eAmbiguousInput:
      return "ambiguous input";
    case eInvalidKey:
      return "invalid key";
    case eKeyNotFound:
      return "key not found";
    case eDuplicateKey:
      return "duplicate key";
    case eInvalidIndex:
      return "index out of range";
    case eNotThatKindOfClass:
      return "object is not of the expected class";
    case eFileNotFound:
      return "file not found";
    case eFileAccessError:
      return "file cannot be read";
    case eFileWriteError:
      return "file cannot be written";
    case eBadDxfFile:
      return "malformed dxf file";
    case eDwgNotSupported:
      return "dwg files are not supported";
    case eUnknownCodePage:
      return "unknown code page";
    case eNotOpenForRead:
      return "object is not open for reading";
    case eNotOpenForWrite:
      return "object is not open for writing";
    case eWasOpenedForWrite:
      return "object is already open for writing";
    case eWasErased:
      return "object was erased";
    case eCannotOpenTable:
      return "symbol table cannot be opened";
    case eNullObjectId:
      return "null object id";
    case eWasOpenedForRead:
      return "object is already open for reading";
    case eDuplicateRecordName:
      return "duplicate record name";
    case eAlreadyRegistered:
      return "already registered";
    case eLoadFailed:
      return "module failed to load";
    case eNoEntryPoint:
      return "module has no entry point";
    case eWrongDatabase:
      return "wrong database";
    case eOutOfMemory:
      return "out of memory";
    case eNullPtr:
      return "null pointer";
    case eCloneFailed:
      return "clone failed";
    case eNotInitializedYet:
      return "not initialized yet";
  }
  return "unknown error";
}
