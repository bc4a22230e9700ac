#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "DxfTag.h"
#include "OdString.h"

class DxfDocument;

// One object of a DXF file: a group-0 tag and every tag up to the next group-0 tag (an
// entity, a table record, a dictionary, the head of a section, which in HEADER carries the
// header variables). The tags stay exactly as read until the object is changed.
//
// An object read from a file shares the document's tag array and remembers the byte range
// it came from; the writer copies that range unchanged for an untouched object. The first
// change copies the tags into a list of the object's own, kept by the document, and drops
// the range, after which the writer encodes the tags in the file's layout.
//
// Objects belong to their document (which must outlive them) and are not copyable; they
// move when their section's object list changes. Values are read through the document's
// codec; string_views returned here stay valid until the document next changes.
class DxfObject {
 public:
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  // An object read from the document's file: `count` tags of the document's tag array from
  // `firstTag`, and the bytes [byteBegin, byteEnd) of the file.
  DxfObject(DxfDocument& doc, std::uint32_t firstTag, std::uint32_t count, std::uint32_t byteBegin,
            std::uint32_t byteEnd) noexcept;
  // A new object made of tags the document made (see DxfDocument::makeText and friends).
  DxfObject(DxfDocument& doc, std::vector<DxfTag> tags);

  // A moved-from object is empty.
  DxfObject(DxfObject&& other) noexcept;
  DxfObject& operator=(DxfObject&& other) noexcept;
  ~DxfObject();
  DxfObject(const DxfObject&) = delete;
  DxfObject& operator=(const DxfObject&) = delete;

  DxfDocument& document() const noexcept { return *doc_; }

  std::size_t size() const noexcept;
  std::span<const DxfTag> tags() const noexcept;
  // Checked access; an index past the end throws OdError_InvalidIndex.
  const DxfTag& tag(std::size_t index) const;
  int code(std::size_t index) const { return tag(index).code; }

  // The value of the leading group-0 tag without surrounding blanks ("LAYER", "SECTION"),
  // or an empty view for tags that precede the first group-0 tag of a file.
  std::string_view type() const;
  // Index of the first tag with `code` at or after `start`, or npos.
  std::size_t find(int code, std::size_t start = 0) const noexcept;
  // The object's own handle (group 5, or 105 in a DIMSTYLE record) as a number, or 0 when it
  // has none or it is not hex.
  std::uint64_t handle() const;

  // Values of the tag at `index`, as DxfDocument reads them.
  std::string_view rawValue(std::size_t index) const;
  OdString text(std::size_t index) const;
  std::int64_t integer(std::size_t index) const;
  double real(std::size_t index) const;

  // Changes. Each one marks the object as changed. Tags must come from this document.
  void setTag(std::size_t index, const DxfTag& tag);
  void setText(std::size_t index, const OdString& value);
  void setInteger(std::size_t index, std::int64_t value);
  void setReal(std::size_t index, double value);
  void insertTag(std::size_t index, const DxfTag& tag);  // index == size() appends
  void eraseTag(std::size_t index);
  void setTags(std::vector<DxfTag> tags);

  // True once any change was made (a new object is always changed).
  bool isModified() const noexcept { return count_ == kChanged; }
  // The bytes this object was read from, [begin, end) of the file; meaningful only while
  // the object is not modified.
  std::uint32_t sourceBegin() const noexcept { return byteBegin_; }
  std::uint32_t sourceEnd() const noexcept { return byteEnd_; }

 private:
  // In count_: the object was changed, and its tags are the document's list of changed
  // tags number first_. Keeping them there rather than behind a pointer of its own makes
  // an object, of which a file has hundreds of thousands, 24 bytes.
  static constexpr std::uint32_t kChanged = 0xFFFFFFFFu;

  std::vector<DxfTag>& ownTags();
  void release() noexcept;

  DxfDocument* doc_;
  std::uint32_t first_ = 0;
  std::uint32_t count_ = 0;
  std::uint32_t byteBegin_ = 0;
  std::uint32_t byteEnd_ = 0;
};

static_assert(sizeof(DxfObject) == 24, "one per object of a file: keep it small");
