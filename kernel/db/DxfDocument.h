#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "DxfObject.h"
#include "DxfPageAllocator.h"
#include "DxfSection.h"
#include "DxfTag.h"
#include "DxfTextCodec.h"
#include "OdString.h"

enum class DxfFormat : std::uint8_t { kAscii, kBinary };

// A DXF file held in memory as sections of objects of tags. The document owns the file's
// bytes (every tag as read refers into them) and a pool for values set later; objects and
// tags are cheap handles into it. Made by DxfReader, written by DxfWriter.
//
// The document remembers everything needed to write the file back unchanged: the bytes
// before the first tag (the binary sentinel), stray tags and objects outside sections, the
// tail of each section and any bytes after "0 EOF". It also remembers the file's layout
// (format, line ending, how group codes are aligned, 1- or 2-byte binary codes) so changed
// and new objects are written the way the rest of the file is.
//
// Not copyable and not movable: objects point back at their document.
class DxfDocument {
 public:
  // How tags are laid out in the file, for writing changed objects the same way.
  struct Layout {
    DxfFormat format = DxfFormat::kAscii;
    bool crlf = false;         // ASCII: lines end with CR LF (else LF)
    int codeWidth = 0;         // ASCII: group codes right-aligned to this width (0: not padded)
    bool twoByteCodes = true;  // binary: 2-byte group codes (from R13) or 1-byte with escape
  };

  // An empty document named `fileName` (used in error messages) over `bytes`, the whole
  // file. DxfReader fills it; other callers get a document from DxfReader.
  DxfDocument(std::string fileName, std::string bytes);
  DxfDocument(std::string fileName, DxfFileBytes bytes);
  ~DxfDocument();
  DxfDocument(const DxfDocument&) = delete;
  DxfDocument& operator=(const DxfDocument&) = delete;

  const std::string& fileName() const noexcept { return fileName_; }
  const Layout& layout() const noexcept { return layout_; }
  DxfFormat format() const noexcept { return layout_.format; }
  // $ACADVER as read ("AC1015"), empty when the file has none.
  const std::string& version() const noexcept { return version_; }
  // The release number of $ACADVER (1009 for "AC1009"), 0 when absent or older than AC1001.
  int versionNumber() const noexcept { return versionNumber_; }
  // The release whose rules say what the file stores: versionNumber(), or 1009 for a file that
  // names none, which is read and written as a release-12 file.
  int formatRelease() const noexcept { return versionNumber_ == 0 ? 1009 : versionNumber_; }
  const DxfTextCodec& codec() const noexcept { return *codec_; }

  // The whole file as read.
  std::string_view bytes() const noexcept { return bytes_; }
  // Bytes before the first tag (the binary sentinel, a byte-order mark) and after the line
  // of "0 EOF", kept verbatim.
  std::string_view preamble() const noexcept;
  std::string_view trailer() const noexcept;

  // Structure in file order: objects before the first section (comments, strays), the
  // sections, and the "0 EOF" object.
  std::vector<DxfObject>& prologue() noexcept { return prologue_; }
  const std::vector<DxfObject>& prologue() const noexcept { return prologue_; }
  std::size_t sectionCount() const noexcept { return sections_.size(); }
  DxfSection& section(std::size_t index);  // checked: throws OdError_InvalidIndex
  const DxfSection& section(std::size_t index) const;
  // The first section called `name`, or null.
  DxfSection* findSection(std::string_view name) noexcept;
  const DxfSection* findSection(std::string_view name) const noexcept;
  // Adds an empty section (head and ENDSEC) before section `index` and returns it.
  DxfSection& insertSection(std::size_t index, std::string_view name);
  DxfObject& eofObject() noexcept { return *eof_; }
  const DxfObject& eofObject() const noexcept { return *eof_; }
  // Calls f(const DxfObject&) for every object in file order: prologue, each section's head,
  // body and tail, then "0 EOF".
  template <typename F>
  void forEachObject(F&& f) const {
    for (const DxfObject& object : prologue_) f(object);
    for (const auto& section : sections_) {
      f(section->head());
      for (const DxfObject& object : section->objects()) f(object);
      for (const DxfObject& object : section->tail()) f(object);
    }
    f(*eof_);
  }
  // Every tag as read, in file order (objects as read are ranges of it).
  std::span<const DxfTag> sourceTags() const noexcept { return {tags_.data(), tags_.size()}; }

  // Values. rawValue() gives the bytes of a value in its own form (see DxfTag); finding the
  // end of a text or string value scans it, which is cheap for the short values of a drawing.
  // text() decodes a string with the file's codec; integer() and real() read a numeric tag in
  // either form, and throw OdError(eInvalidInput) naming the tag when the group code is not of
  // that kind. binaryChunk() gives the bytes of a 310-319 or 1004 tag. stringBytes() gives a
  // string in the file's encoding with the caret notation of ASCII files undone ("^J" is a
  // line feed).
  std::string_view rawValue(const DxfTag& tag) const noexcept;
  std::string stringBytes(const DxfTag& tag) const;
  OdString text(const DxfTag& tag) const;
  std::int64_t integer(const DxfTag& tag) const;
  double real(const DxfTag& tag) const;
  std::string binaryChunk(const DxfTag& tag) const;

  // New tags, their values stored in the document's pool in text form. The group code must
  // be of the value's kind (throws OdError(eInvalidInput) otherwise): makeText for string
  // codes (encoded with the file's codec, control characters in caret notation), makeInteger for
  // integer and boolean codes (range checked), makeReal for doubles, makeBinary for chunks. makeRaw
  // takes the exact text of an ASCII value line and checks it as the reader does.
  DxfTag makeText(int code, const OdString& value);
  DxfTag makeInteger(int code, std::int64_t value);
  DxfTag makeReal(int code, double value);
  DxfTag makeBinary(int code, std::string_view bytes);
  DxfTag makeRaw(int code, std::string_view text);

  // Header variables live in the head of the HEADER section as a "9 $NAME" tag followed by
  // value tags. headerVariable gives the value tags (empty when the variable or the HEADER
  // section is missing); headerText the first value decoded, or empty. Names compare
  // exactly ("$ACADVER"). setHeaderVariable replaces the values, or appends the variable at
  // the end of the header, creating a HEADER section first when the file has none. The
  // document keeps its codec: setting $DWGCODEPAGE or $ACADVER changes the variable only.
  std::vector<DxfTag> headerVariable(std::string_view name) const;
  OdString headerText(std::string_view name) const;
  void setHeaderVariable(std::string_view name, const std::vector<DxfTag>& values);
  // The head of the HEADER section, which holds the variables; null when there is none.
  const DxfObject* headerObject() const;
  // Where the value tags of `name` are in headerObject(): [first, end), or {npos, npos}.
  std::pair<std::size_t, std::size_t> headerVariableRange(std::string_view name) const;

  // "line 12" (ASCII) or "byte offset 345" (binary) where a tag as read starts, for error
  // messages of the layers above; "a changed tag" for tags made later.
  std::string describePosition(const DxfTag& tag) const;
  // Throws OdError(eBadDxfFile) "<file>: <position>, group code <code>: <what>".
  [[noreturn]] void fail(const DxfTag& tag, const std::string& what) const;

 private:
  friend class DxfReader;
  friend class DxfObject;

  DxfTag addToPool(int code, std::string_view bytes);
  std::uint32_t adoptChangedTags(std::vector<DxfTag> tags);
  void releaseChangedTags(std::uint32_t number) noexcept;
  void setVersion(std::string version, std::string_view codePage);

  std::string fileName_;
  // The file's bytes live in one of these two, as they were handed over; bytes_ views them.
  std::string stringBytes_;
  DxfFileBytes fileBytes_;
  std::string_view bytes_;
  std::string pool_;
  Layout layout_;
  std::string version_;
  int versionNumber_ = 0;
  std::unique_ptr<DxfTextCodec> codec_;
  std::uint32_t preambleEnd_ = 0;
  std::uint32_t trailerBegin_ = 0;
  std::vector<DxfTag, DxfPageAllocator<DxfTag>> tags_;
  // The tags of changed objects, a list each, numbered; a number is reused once its object
  // goes. Declared before the objects, which give their lists back when they go.
  std::vector<std::unique_ptr<std::vector<DxfTag>>> changedTags_;
  std::vector<std::uint32_t> freeChangedTags_;
  std::vector<DxfObject> prologue_;
  std::vector<std::unique_ptr<DxfSection>> sections_;
  std::unique_ptr<DxfObject> eof_;
};
