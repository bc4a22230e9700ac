#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "DxfDocument.h"
#include "OdAtomicFile.h"

// Writes a DxfDocument as a DXF file.
//
// In the document's own format an untouched object is copied as the bytes it was read from,
// so a document nobody changed is written back byte for byte, together with whatever came
// before its first tag and after its "0 EOF". Changed and new objects are written in the
// file's version, encoding and layout (line ending and group-code alignment in ASCII, 1- or
// 2-byte group codes in binary).
//
// Converting to the other format re-encodes every tag: numbers keep their value (ASCII
// doubles are written so they read back as the same double), strings their bytes (control
// characters take the caret notation of ASCII files, "^J", and lose it in binary). An ASCII
// file written from binary gets CR LF lines and group codes right-aligned to three columns;
// a binary file written from ASCII gets 2-byte group codes from R13 and 1-byte codes before.
// Bytes after "0 EOF" are kept only when the format stays the same.
class DxfWriter {
 public:
  // Writes `doc` in `format`, by default the document's own.
  explicit DxfWriter(const DxfDocument& doc, std::optional<DxfFormat> format = std::nullopt);

  // The whole file. Throws OdError(eBadDxfFile) naming the tag when a value cannot be written
  // in the target format (a string holding "^@", a NUL, converted to binary).
  std::string toBytes() const;

  // Saves to `path` without ever leaving it damaged, through OdAtomicFile with `options`
  // (by default the new file keeps the owner, group and permissions of the one it replaces).
  // On any failure the old file is left as it was and OdError(eFileWriteError) says what
  // failed where (or eBadDxfFile as for toBytes).
  void save(const std::filesystem::path& path, const OdAtomicFile::Options& options = {}) const;

 private:
  class Sink;
  void writeAll(Sink& sink) const;

  const DxfDocument& doc_;
  DxfFormat format_;
};
