#pragma once

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

#include "OdError.h"

// A growable array of values, kept contiguous.
//
// Indexes are unsigned. operator[] is unchecked, as in the standard library; at(), getAt(),
// setAt(), removeAt(), insertAt(), first() and last() check and throw OdError_InvalidIndex
// for an index outside the array (or on an empty array). Iterators, references and
// asArrayPtr() are invalidated by anything that changes the length, as for std::vector.
template <class T>
class OdArray {
 public:
  using size_type = unsigned int;
  using value_type = T;
  using iterator = typename std::vector<T>::iterator;
  using const_iterator = typename std::vector<T>::const_iterator;

  OdArray() = default;
  // An empty array with room for `physicalLength` elements.
  explicit OdArray(size_type physicalLength) { items_.reserve(physicalLength); }
  OdArray(std::initializer_list<T> items) : items_(items) {}
  template <class It>
  OdArray(It first, It last) : items_(first, last) {}

  size_type size() const noexcept { return static_cast<size_type>(items_.size()); }
  size_type length() const noexcept { return size(); }
  size_type logicalLength() const noexcept { return size(); }
  size_type physicalLength() const noexcept { return static_cast<size_type>(items_.capacity()); }
  bool isEmpty() const noexcept { return items_.empty(); }
  bool empty() const noexcept { return items_.empty(); }

  // Appends and returns the new element's index.
  size_type append(const T& value) {
    items_.push_back(value);
    return size() - 1;
  }
  size_type append(T&& value) {
    items_.push_back(std::move(value));
    return size() - 1;
  }
  OdArray& append(const OdArray& other) {
    items_.insert(items_.end(), other.items_.begin(), other.items_.end());
    return *this;
  }
  void push_back(const T& value) { items_.push_back(value); }

  T& operator[](size_type index) { return items_[index]; }
  const T& operator[](size_type index) const { return items_[index]; }
  T& at(size_type index) { return items_[checked(index)]; }
  const T& at(size_type index) const { return items_[checked(index)]; }
  const T& getAt(size_type index) const { return at(index); }
  OdArray& setAt(size_type index, const T& value) {
    items_[checked(index)] = value;
    return *this;
  }
  T& first() { return at(0); }
  const T& first() const { return at(0); }
  T& last() { return at(size() - 1); }
  const T& last() const { return at(size() - 1); }

  // Inserts before `index`; `index` may be size() (an append).
  OdArray& insertAt(size_type index, const T& value) {
    if (index > size()) throw OdError_InvalidIndex();
    items_.insert(items_.begin() + index, value);
    return *this;
  }
  OdArray& removeAt(size_type index) {
    items_.erase(items_.begin() + checked(index));
    return *this;
  }
  OdArray& removeLast() {
    removeAt(size() - 1);
    return *this;
  }
  // Removes the first element equal to `value`; says whether there was one.
  bool remove(const T& value) {
    size_type index = 0;
    if (!find(value, index)) return false;
    removeAt(index);
    return true;
  }
  void clear() noexcept { items_.clear(); }

  // Finds the first element equal to `value` at or after `start`; on success sets `index`.
  // `index` is left alone on a miss.
  bool find(const T& value, size_type& index, size_type start = 0) const {
    if (start >= size()) return false;
    auto it = std::find(items_.begin() + start, items_.end(), value);
    if (it == items_.end()) return false;
    index = static_cast<size_type>(it - items_.begin());
    return true;
  }
  bool contains(const T& value, size_type start = 0) const {
    size_type index = 0;
    return find(value, index, start);
  }

  // Grows (with default values) or shrinks to `length` elements.
  OdArray& setLogicalLength(size_type length) {
    items_.resize(length);
    return *this;
  }
  OdArray& resize(size_type length, const T& value) {
    items_.resize(length, value);
    return *this;
  }
  // Reserves room; never shrinks below the current length.
  OdArray& setPhysicalLength(size_type length) {
    if (length > items_.capacity()) items_.reserve(length);
    return *this;
  }
  OdArray& reverse() {
    std::reverse(items_.begin(), items_.end());
    return *this;
  }

  iterator begin() noexcept { return items_.begin(); }
  iterator end() noexcept { return items_.end(); }
  const_iterator begin() const noexcept { return items_.begin(); }
  const_iterator end() const noexcept { return items_.end(); }

  // The elements as a plain array (null or dangling when empty; do not dereference then).
  T* asArrayPtr() noexcept { return items_.data(); }
  const T* asArrayPtr() const noexcept { return items_.data(); }
  T* data() noexcept { return items_.data(); }
  const T* data() const noexcept { return items_.data(); }

  friend bool operator==(const OdArray& a, const OdArray& b) { return a.items_ == b.items_; }

 private:
  size_type checked(size_type index) const {
    if (index >= size()) throw OdError_InvalidIndex();
    return index;
  }

  std::vector<T> items_;
};
