#pragma once

// Result codes of the drawing-database kernel. The numeric values are part of the
// interface: callers store and compare them as numbers, so existing values never change.
enum OdResult : int {
  eOk = 0,
  eNotImplementedYet = 1,
  eInvalidInput = 3,
  eAmbiguousInput = 4,
  eInvalidKey = 5,
  eKeyNotFound = 6,
  eDuplicateKey = 7,
  eInvalidIndex = 8,
  eNotThatKindOfClass = 9,
  eFileNotFound = 10,
  eFileAccessError = 11,
  eFileWriteError = 12,
  eBadDxfFile = 13,
  eDwgNotSupported = 14,
  eUnknownCodePage = 15,
  eNotOpenForRead = 16,
  eNotOpenForWrite = 17,
  eWasOpenedForWrite = 18,
  eWasErased = 19,
  eCannotOpenTable = 20,  // a symbol table that should open does not
  eNullObjectId = 21,
  eWasOpenedForRead = 22,
  eDuplicateRecordName = 23,
  eAlreadyRegistered = 24,  // a run-time class or module registered twice
  eLoadFailed = 25,         // a module file that does not load
  eNoEntryPoint = 26,       // a module file without odrxCreateModuleObject
  eWrongDatabase = 40,      // source and target of an operation are the same database
  eOutOfMemory = 50,
  eNullPtr = 122,
  eCloneFailed = 241,
  eNotInitializedYet = 255,  // a run-time class used before it was registered
};

// The enumerator's name of the code ("eOk", "eKeyNotFound", ...); "eUnknownResult" for a
// number that is not listed here. Never null; the text is static.
const char* odResultName(OdResult code);

// A short lower-case description of the code ("key not found"), used as an error's
// message when none more precise was given. Never null; the text is static.
const char* odResultMessage(OdResult code);
