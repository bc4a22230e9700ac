#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "DxfObject.h"

// One section of a DXF file: its head object (the "0 SECTION / 2 <name>" tags, which in the
// HEADER section carry the header variables as well), the objects of its body in file order,
// and its tail: the "0 ENDSEC" object plus any stray objects a file has between that and the
// next section, kept so they are written back where they were.
//
// Objects are addressed by index. Inserting or erasing moves the objects after it, so keep
// indexes or handles rather than references across such changes.
class DxfSection {
 public:
  DxfSection(std::string name, DxfObject head) : name_(std::move(name)), head_(std::move(head)) {}

  // The section name as written after group 2, without surrounding blanks ("HEADER",
  // "ENTITIES", "ACDSDATA", or whatever an unknown section is called).
  const std::string& name() const noexcept { return name_; }

  DxfObject& head() noexcept { return head_; }
  const DxfObject& head() const noexcept { return head_; }

  std::size_t size() const noexcept { return objects_.size(); }
  // Checked access; an index past the end throws OdError_InvalidIndex.
  DxfObject& object(std::size_t index);
  const DxfObject& object(std::size_t index) const;
  std::vector<DxfObject>& objects() noexcept { return objects_; }
  const std::vector<DxfObject>& objects() const noexcept { return objects_; }

  // Inserts a new object made of `tags` before `index` (size() appends) and returns it.
  DxfObject& insertObject(std::size_t index, std::vector<DxfTag> tags);
  void eraseObject(std::size_t index);

  std::vector<DxfObject>& tail() noexcept { return tail_; }
  const std::vector<DxfObject>& tail() const noexcept { return tail_; }

 private:
  std::string name_;
  DxfObject head_;
  std::vector<DxfObject> objects_;
  std::vector<DxfObject> tail_;
};
