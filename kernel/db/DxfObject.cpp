#include "DxfObject.h"

#include <charconv>

#include "DxfDocument.h"
#include "OdError.h"

namespace {

std::string_view trimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

}  // namespace

DxfObject::DxfObject(DxfDocument& doc, std::uint32_t firstTag, std::uint32_t count,
                     std::uint32_t byteBegin, std::uint32_t byteEnd) noexcept
    : doc_(&doc), first_(firstTag), count_(count), byteBegin_(byteBegin), byteEnd_(byteEnd) {}

DxfObject::DxfObject(DxfDocument& doc, std::vector<DxfTag> tags)
    : doc_(&doc), first_(doc.adoptChangedTags(std::move(tags))), count_(kChanged) {}

DxfObject::DxfObject(DxfObject&& other) noexcept
    : doc_(other.doc_),
      first_(other.first_),
      count_(other.count_),
      byteBegin_(other.byteBegin_),
      byteEnd_(other.byteEnd_) {
  other.count_ = 0;
}

DxfObject& DxfObject::operator=(DxfObject&& other) noexcept {
  if (this != &other) {
    release();
    doc_ = other.doc_;
    first_ = other.first_;
    count_ = other.count_;
    byteBegin_ = other.byteBegin_;
    byteEnd_ = other.byteEnd_;
    other.count_ = 0;
  }
  return *this;
}

DxfObject::~DxfObject() {
  release();
}

void DxfObject::release() noexcept {
  if (count_ == kChanged) doc_->releaseChangedTags(first_);
  count_ = 0;
}

std::size_t DxfObject::size() const noexcept {
  return count_ == kChanged ? doc_->changedTags_[first_]->size() : count_;
}

std::span<const DxfTag> DxfObject::tags() const noexcept {
  if (count_ == kChanged) {
    const std::vector<DxfTag>& own = *doc_->changedTags_[first_];
    return {own.data(), own.size()};
  }
  return {doc_->sourceTags().data() + first_, count_};
}

const DxfTag& DxfObject::tag(std::size_t index) const {
  if (index >= size()) throw OdError_InvalidIndex();
  return tags()[index];
}

std::string_view DxfObject::type() const {
  if (size() == 0 || tags()[0].code != 0) return {};
  return trimBlanks(doc_->rawValue(tags()[0]));
}

std::size_t DxfObject::find(int code, std::size_t start) const noexcept {
  auto all = tags();
  for (std::size_t i = start; i < all.size(); ++i)
    if (all[i].code == code) return i;
  return npos;
}

std::uint64_t DxfObject::handle() const {
  // A dimension style keeps its handle in 105: its group 5 is the DIMBLK arrow's name.
  std::size_t at = find(type() == "DIMSTYLE" ? 105 : 5);
  if (at == npos) return 0;
  std::string_view hex = trimBlanks(doc_->rawValue(tags()[at]));
  std::uint64_t value = 0;
  auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
  if (ec != std::errc() || end != hex.data() + hex.size()) return 0;
  return value;
}

std::string_view DxfObject::rawValue(std::size_t index) const {
  return doc_->rawValue(tag(index));
}
OdString DxfObject::text(std::size_t index) const {
  return doc_->text(tag(index));
}
std::int64_t DxfObject::integer(std::size_t index) const {
  return doc_->integer(tag(index));
}
double DxfObject::real(std::size_t index) const {
  return doc_->real(tag(index));
}

std::vector<DxfTag>& DxfObject::ownTags() {
  if (count_ != kChanged) {
    auto current = tags();
    first_ = doc_->adoptChangedTags(std::vector<DxfTag>(current.begin(), current.end()));
    count_ = kChanged;
  }
  return *doc_->changedTags_[first_];
}

void DxfObject::setTag(std::size_t index, const DxfTag& newTag) {
  if (index >= size()) throw OdError_InvalidIndex();
  ownTags()[index] = newTag;
}

void DxfObject::setText(std::size_t index, const OdString& value) {
  setTag(index, doc_->makeText(code(index), value));
}

void DxfObject::setInteger(std::size_t index, std::int64_t value) {
  setTag(index, doc_->makeInteger(code(index), value));
}

void DxfObject::setReal(std::size_t index, double value) {
  setTag(index, doc_->makeReal(code(index), value));
}

void DxfObject::insertTag(std::size_t index, const DxfTag& newTag) {
  if (index > size()) throw OdError_InvalidIndex();
  auto& own = ownTags();
  own.insert(own.begin() + static_cast<std::ptrdiff_t>(index), newTag);
}

void DxfObject::eraseTag(std::size_t index) {
  if (index >= size()) throw OdError_InvalidIndex();
  auto& own = ownTags();
  own.erase(own.begin() + static_cast<std::ptrdiff_t>(index));
}

void DxfObject::setTags(std::vector<DxfTag> newTags) {
  if (count_ == kChanged) {
    *doc_->changedTags_[first_] = std::move(newTags);
  } else {
    first_ = doc_->adoptChangedTags(std::move(newTags));
    count_ = kChanged;
  }
}
