#include "DxfDocument.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

#include "DxfByteScan.h"
#include "DxfGroupCode.h"
#include "OdError.h"

namespace {

template <typename T>
T readLittleEndian(std::string_view bytes) {
  T value{};
  // Files are little endian, as is every platform this builds for.
  std::memcpy(&value, bytes.data(), std::min(sizeof(T), bytes.size()));
  return value;
}

std::string_view trimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

int parseVersionNumber(std::string_view version) {
  version = trimBlanks(version);
  if (version.size() != 6 || version.substr(0, 2) != "AC") return 0;
  int number = 0;
  for (char c : version.substr(2)) {
    if (c < '0' || c > '9') return 0;
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

DxfDocument::DxfDocument(std::string fileName, std::string bytes)
    : fileName_(std::move(fileName)), stringBytes_(std::move(bytes)), bytes_(stringBytes_) {
  codec_ = std::make_unique<DxfTextCodec>("", "");
}

DxfDocument::DxfDocument(std::string fileName, DxfFileBytes bytes)
    : fileName_(std::move(fileName)),
      fileBytes_(std::move(bytes)),
      bytes_(fileBytes_.data(), fileBytes_.size()) {
  codec_ = std::make_unique<DxfTextCodec>("", "");
}

DxfDocument::~DxfDocument() = default;

void DxfDocument::setVersion(std::string version, std::string_view codePage) {
  version_ = std::string(trimBlanks(version));
  versionNumber_ = parseVersionNumber(version_);
  codec_ = std::make_unique<DxfTextCodec>(version_, trimBlanks(codePage));
}

std::string_view DxfDocument::preamble() const noexcept {
  return bytes_.substr(0, preambleEnd_);
}

std::string_view DxfDocument::trailer() const noexcept {
  return bytes_.substr(std::min<std::size_t>(trailerBegin_, bytes_.size()));
}

DxfSection& DxfDocument::section(std::size_t index) {
  if (index >= sections_.size()) throw OdError_InvalidIndex();
  return *sections_[index];
}

const DxfSection& DxfDocument::section(std::size_t index) const {
  if (index >= sections_.size()) throw OdError_InvalidIndex();
  return *sections_[index];
}

DxfSection* DxfDocument::findSection(std::string_view name) noexcept {
  for (auto& s : sections_)
    if (s->name() == name) return s.get();
  return nullptr;
}

const DxfSection* DxfDocument::findSection(std::string_view name) const noexcept {
  for (const auto& s : sections_)
    if (s->name() == name) return s.get();
  return nullptr;
}

DxfSection& DxfDocument::insertSection(std::size_t index, std::string_view name) {
  if (index > sections_.size()) throw OdError_InvalidIndex();
  DxfObject head(*this, {makeRaw(0, "SECTION"), makeRaw(2, name)});
  auto section = std::make_unique<DxfSection>(std::string(name), std::move(head));
  section->tail().emplace_back(*this, std::vector<DxfTag>{makeRaw(0, "ENDSEC")});
  auto it =
      sections_.insert(sections_.begin() + static_cast<std::ptrdiff_t>(index), std::move(section));
  return **it;
}

std::uint32_t DxfDocument::adoptChangedTags(std::vector<DxfTag> tags) {
  // Room to give every number back without allocating, as objects do that when they go.
  if (freeChangedTags_.capacity() <= changedTags_.size())
    freeChangedTags_.reserve(2 * changedTags_.size() + 16);
  auto list = std::make_unique<std::vector<DxfTag>>(std::move(tags));
  if (!freeChangedTags_.empty()) {
    const std::uint32_t number = freeChangedTags_.back();
    freeChangedTags_.pop_back();
    changedTags_[number] = std::move(list);
    return number;
  }
  changedTags_.push_back(std::move(list));
  return static_cast<std::uint32_t>(changedTags_.size() - 1);
}

void DxfDocument::releaseChangedTags(std::uint32_t number) noexcept {
  changedTags_[number].reset();
  freeChangedTags_.push_back(number);  // room was made when the number was handed out
}

namespace {

// A text value runs to the end of its line, without a CR before the LF: the rule by which
// DxfReader::parseAscii cut it out of the file, and the one pool values are stored for.
std::size_t textLength(const char* value, const char* end) noexcept {
  const char* lineEnd = dxfFindByte(value, end, '\n');
  if (!lineEnd) lineEnd = end;
  if (lineEnd > value && lineEnd[-1] == '\r') --lineEnd;
  return static_cast<std::size_t>(lineEnd - value);
}

// A binary value as DxfReader::parseBinary found it: a number of its type's size, a chunk
// of as many bytes as the byte before it says, or a string up to its NUL. Clipped to the
// store, so that no tag reads past it.
std::size_t binaryLength(int code, const char* value, const char* begin, const char* end) noexcept {
  const std::size_t available = static_cast<std::size_t>(end - value);
  const DxfValueType type = DxfGroupCode::valueType(code);
  if (const int size = DxfGroupCode::binarySize(type))
    return std::min(static_cast<std::size_t>(size), available);
  if (type == DxfValueType::kBinary)
    return value > begin ? std::min<std::size_t>(static_cast<unsigned char>(value[-1]), available)
                         : 0;
  const char* nul = dxfFindByte(value, end, 0);
  return static_cast<std::size_t>((nul ? nul : end) - value);
}

}  // namespace

std::string_view DxfDocument::rawValue(const DxfTag& tag) const noexcept {
  const std::string_view store = tag.isInPool() ? std::string_view(pool_) : bytes_;
  const std::size_t offset = tag.offset();
  if (offset > store.size()) return {};
  const char* value = store.data() + offset;
  const char* end = store.data() + store.size();
  return {value, tag.isBinaryForm() ? binaryLength(tag.code, value, store.data(), end)
                                    : textLength(value, end)};
}

std::string DxfDocument::stringBytes(const DxfTag& tag) const {
  std::string_view raw = rawValue(tag);
  if (tag.isBinaryForm() || raw.find('^') == std::string_view::npos) return std::string(raw);
  return DxfGroupCode::caretDecode(raw);
}

OdString DxfDocument::text(const DxfTag& tag) const {
  DxfValueType type = DxfGroupCode::valueType(tag.code);
  if (type == DxfValueType::kString || type == DxfValueType::kUnknown) {
    std::string_view raw = rawValue(tag);
    if (tag.isBinaryForm() || raw.find('^') == std::string_view::npos) return codec_->decode(raw);
    return codec_->decode(DxfGroupCode::caretDecode(raw));
  }
  if (type == DxfValueType::kBinary)
    return OdString::fromUtf8(tag.isBinaryForm() ? DxfGroupCode::formatHex(rawValue(tag))
                                                 : std::string(trimBlanks(rawValue(tag))));
  if (!tag.isBinaryForm()) return OdString::fromUtf8(trimBlanks(rawValue(tag)));
  if (type == DxfValueType::kDouble) return OdString::fromUtf8(DxfGroupCode::formatReal(real(tag)));
  return OdString::fromUtf8(std::to_string(integer(tag)));
}

std::int64_t DxfDocument::integer(const DxfTag& tag) const {
  DxfValueType type = DxfGroupCode::valueType(tag.code);
  if (!DxfGroupCode::isInteger(type)) fail(tag, "not an integer group code");
  std::string_view raw = rawValue(tag);
  if (tag.isBinaryForm()) {
    switch (type) {
      case DxfValueType::kInt16:
        return readLittleEndian<std::int16_t>(raw);
      case DxfValueType::kInt32:
        return readLittleEndian<std::int32_t>(raw);
      case DxfValueType::kInt64:
        return readLittleEndian<std::int64_t>(raw);
      default:
        return readLittleEndian<std::uint8_t>(raw);
    }
  }
  std::int64_t value = 0;
  if (!DxfGroupCode::parseInteger(raw, value)) fail(tag, "value is not an integer");
  return value;
}

double DxfDocument::real(const DxfTag& tag) const {
  if (DxfGroupCode::valueType(tag.code) != DxfValueType::kDouble)
    fail(tag, "not a real-number group code");
  std::string_view raw = rawValue(tag);
  if (tag.isBinaryForm()) return readLittleEndian<double>(raw);
  double value = 0;
  if (!DxfGroupCode::parseReal(raw, value)) fail(tag, "value is not a number");
  return value;
}

std::string DxfDocument::binaryChunk(const DxfTag& tag) const {
  if (DxfGroupCode::valueType(tag.code) != DxfValueType::kBinary)
    fail(tag, "not a binary-data group code");
  if (tag.isBinaryForm()) return std::string(rawValue(tag));
  std::string bytes;
  if (!DxfGroupCode::parseHex(rawValue(tag), &bytes)) fail(tag, "value is not hex data");
  return bytes;
}

// Every pool value is followed by a line feed, where rawValue finds its end. No value holds
// one, nor a CR before it: makeText writes control characters in caret notation, makeRaw
// refuses line breaks, and the other makers write numbers and hex digits.
DxfTag DxfDocument::addToPool(int code, std::string_view bytes) {
  if (pool_.size() + bytes.size() >= std::numeric_limits<std::uint32_t>::max())
    throw OdError(eOutOfMemory, fileName_ + ": too many changed values");
  assert(DxfGroupCode::valueType(code) != DxfValueType::kUnknown);  // see DxfTag::kMaxCode
  DxfTag tag(code, static_cast<std::uint32_t>(pool_.size()), DxfTag::kInPool);
  pool_.append(bytes);
  pool_.push_back('\n');
  return tag;
}

namespace {

[[noreturn]] void badValue(int code, const std::string& what) {
  throw OdError(eInvalidInput, "group code " + std::to_string(code) + ": " + what);
}

}  // namespace

DxfTag DxfDocument::makeText(int code, const OdString& value) {
  DxfValueType type = DxfGroupCode::valueType(code);
  if (type != DxfValueType::kString) badValue(code, "not a string group code");
  std::string bytes = codec_->encode(value);
  if (bytes.find('\0') != std::string::npos)
    badValue(code, "a DXF string cannot hold a NUL character");
  if (DxfGroupCode::needsCaretEncoding(bytes)) bytes = DxfGroupCode::caretEncode(bytes);
  return addToPool(code, bytes);
}

DxfTag DxfDocument::makeInteger(int code, std::int64_t value) {
  DxfValueType type = DxfGroupCode::valueType(code);
  if (!DxfGroupCode::isInteger(type)) badValue(code, "not an integer group code");
  if (value < DxfGroupCode::minInteger(type) || value > DxfGroupCode::maxInteger(type))
    badValue(code, "value " + std::to_string(value) + " is out of range");
  return addToPool(code, std::to_string(value));
}

DxfTag DxfDocument::makeReal(int code, double value) {
  if (DxfGroupCode::valueType(code) != DxfValueType::kDouble)
    badValue(code, "not a real-number group code");
  return addToPool(code, DxfGroupCode::formatReal(value));
}

DxfTag DxfDocument::makeBinary(int code, std::string_view bytes) {
  if (DxfGroupCode::valueType(code) != DxfValueType::kBinary)
    badValue(code, "not a binary-data group code");
  if (bytes.size() > 255) badValue(code, "a binary chunk holds at most 255 bytes");
  return addToPool(code, DxfGroupCode::formatHex(bytes));
}

DxfTag DxfDocument::makeRaw(int code, std::string_view text) {
  DxfValueType type = DxfGroupCode::valueType(code);
  if (type == DxfValueType::kUnknown) badValue(code, "unknown group code");
  if (text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
    badValue(code, "a value cannot hold a line break or a NUL character");
  if (DxfGroupCode::isInteger(type)) {
    std::int64_t value = 0;
    if (!DxfGroupCode::parseInteger(text, value) || value < DxfGroupCode::minInteger(type) ||
        value > DxfGroupCode::maxInteger(type))
      badValue(code, "'" + std::string(text) + "' is not an integer in range");
  } else if (type == DxfValueType::kDouble) {
    double value = 0;
    if (!DxfGroupCode::parseReal(text, value))
      badValue(code, "'" + std::string(text) + "' is not a number");
  } else if (type == DxfValueType::kBinary) {
    if (!DxfGroupCode::parseHex(text, nullptr) || trimBlanks(text).size() > 510)
      badValue(code, "not hex data of at most 255 bytes");
  }
  return addToPool(code, text);
}

namespace {

// Index of the "9 name" tag in the header's head object, or npos.
std::size_t findVariable(const DxfDocument& doc, const DxfObject& head, std::string_view name) {
  auto tags = head.tags();
  for (std::size_t i = 0; i < tags.size(); ++i)
    if (tags[i].code == 9 && trimBlanks(doc.rawValue(tags[i])) == name) return i;
  return DxfObject::npos;
}

std::size_t variableEnd(const DxfObject& head, std::size_t nameIndex) {
  std::size_t end = nameIndex + 1;
  while (end < head.size() && head.tags()[end].code != 9) ++end;
  return end;
}

}  // namespace

std::vector<DxfTag> DxfDocument::headerVariable(std::string_view name) const {
  const DxfSection* header = findSection("HEADER");
  if (!header) return {};
  std::size_t at = findVariable(*this, header->head(), name);
  if (at == DxfObject::npos) return {};
  auto tags = header->head().tags();
  std::size_t end = variableEnd(header->head(), at);
  return std::vector<DxfTag>(tags.begin() + static_cast<std::ptrdiff_t>(at + 1),
                             tags.begin() + static_cast<std::ptrdiff_t>(end));
}

const DxfObject* DxfDocument::headerObject() const {
  const DxfSection* header = findSection("HEADER");
  return header ? &header->head() : nullptr;
}

std::pair<std::size_t, std::size_t> DxfDocument::headerVariableRange(std::string_view name) const {
  const DxfObject* head = headerObject();
  std::size_t at = head ? findVariable(*this, *head, name) : DxfObject::npos;
  if (at == DxfObject::npos) return {DxfObject::npos, DxfObject::npos};
  return {at + 1, variableEnd(*head, at)};
}

OdString DxfDocument::headerText(std::string_view name) const {
  auto values = headerVariable(name);
  return values.empty() ? OdString() : text(values.front());
}

void DxfDocument::setHeaderVariable(std::string_view name, const std::vector<DxfTag>& values) {
  DxfSection* header = findSection("HEADER");
  if (!header) header = &insertSection(0, "HEADER");
  DxfObject& head = header->head();
  std::vector<DxfTag> tags(head.tags().begin(), head.tags().end());
  std::size_t at = findVariable(*this, head, name);
  if (at == DxfObject::npos) {
    tags.push_back(makeRaw(9, name));
    tags.insert(tags.end(), values.begin(), values.end());
  } else {
    std::size_t end = variableEnd(head, at);
    tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(at + 1),
               tags.begin() + static_cast<std::ptrdiff_t>(end));
    tags.insert(tags.begin() + static_cast<std::ptrdiff_t>(at + 1), values.begin(), values.end());
  }
  head.setTags(std::move(tags));
}

std::string DxfDocument::describePosition(const DxfTag& tag) const {
  if (tag.isInPool()) return "a changed tag";
  std::size_t offset = std::min<std::size_t>(tag.offset(), bytes_.size());
  if (layout_.format == DxfFormat::kBinary) {
    // The tag remembers where its value starts; it starts at its group code, as the reader's
    // positions do: two bytes of code, or one (three with the escape byte for codes outside
    // 0-254) in early files, and a chunk's length byte.
    std::size_t head = layout_.twoByteCodes ? 2 : (tag.code >= 0 && tag.code < 255 ? 1 : 3);
    if (DxfGroupCode::valueType(tag.code) == DxfValueType::kBinary) ++head;
    return "byte offset " + std::to_string(offset >= head ? offset - head : 0);
  }
  // The value line follows the code line: report the line of the group code.
  std::size_t lines =
      static_cast<std::size_t>(std::count(bytes_.data(), bytes_.data() + offset, '\n'));
  return "line " + std::to_string(lines > 0 ? lines : 1);
}

void DxfDocument::fail(const DxfTag& tag, const std::string& what) const {
  throw OdError(eBadDxfFile, fileName_ + ": " + describePosition(tag) + ", group code " +
                                 std::to_string(tag.code) + ": " + what);
}
