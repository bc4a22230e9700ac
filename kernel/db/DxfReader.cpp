#include "DxfReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <limits>

#include "DxfByteScan.h"
#include "DxfGroupCode.h"
#include "OdError.h"
#include "OdFileStamp.h"

namespace {

// The format's own constant that opens every binary file.
constexpr std::string_view kBinarySentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

constexpr std::string_view kUtf8Bom("\xEF\xBB\xBF");

// Text of a bad line for a message: printable ASCII kept, other bytes as \xNN, cut short.
std::string quoteForMessage(std::string_view text) {
  std::string out = "'";
  std::size_t shown = 0;
  for (unsigned char c : text) {
    if (++shown > 40) {
      out += "...";
      break;
    }
    if (c >= 0x20 && c < 0x7F && c != '\'') {
      out.push_back(static_cast<char>(c));
    } else {
      static const char kDigits[] = "0123456789abcdef";
      out += "\\x";
      out.push_back(kDigits[c >> 4]);
      out.push_back(kDigits[c & 15]);
    }
  }
  return out + "'";
}

inline std::string_view trimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t';
}

// The common shape of a real in a file, [blanks][sign]digits[.digits][blanks], checked
// without converting: such text always parses, and too few digits to overflow. Anything
// else (exponents, inf, garbage) goes through the full parse.
bool isPlainDecimal(std::string_view text) noexcept {
  const char* s = text.data();
  const char* e = s + text.size();
  while (s < e && isBlank(*s)) ++s;
  while (e > s && isBlank(e[-1])) --e;
  if (s < e && (*s == '-' || *s == '+')) ++s;
  if (e - s > 300) return false;
  bool digits = false;
  bool point = false;
  for (; s < e; ++s) {
    if (*s >= '0' && *s <= '9') {
      digits = true;
    } else if (*s == '.' && !point) {
      point = true;
    } else {
      return false;
    }
  }
  return digits;
}

// An integer of at most 18 digits, parsed by hand; false sends it through the full parse
// (which also produces the error for a malformed value).
bool parseSmallInteger(std::string_view text, std::int64_t& value) noexcept {
  const char* s = text.data();
  const char* e = s + text.size();
  while (s < e && isBlank(*s)) ++s;
  while (e > s && isBlank(e[-1])) --e;
  bool negative = false;
  if (s < e && (*s == '-' || *s == '+')) negative = *s++ == '-';
  if (s == e || e - s > 18) return false;
  std::int64_t number = 0;
  for (; s < e; ++s) {
    unsigned digit = static_cast<unsigned char>(*s) - static_cast<unsigned>('0');
    if (digit > 9) return false;
    number = number * 10 + digit;
  }
  value = negative ? -number : number;
  return true;
}

bool isEof(std::string_view value) noexcept {
  return value.size() >= 3 && value.size() < 16 && trimBlanks(value) == "EOF";
}

const char* typeName(DxfValueType type) {
  switch (type) {
    case DxfValueType::kInt16:
      return "a 16-bit integer";
    case DxfValueType::kInt32:
      return "a 32-bit integer";
    case DxfValueType::kInt64:
      return "a 64-bit integer";
    case DxfValueType::kBool:
      return "a boolean (0-255)";
    default:
      return "an integer";
  }
}

DxfFileBytes readWholeFile(const std::filesystem::path& path) {
  const std::string name = path.string();
  // Without O_NONBLOCK, opening a FIFO waits for a writer that may never come; nothing is
  // read before fstat has shown a regular file, for which the flag changes nothing.
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    int err = errno;
    if (err == ENOENT) throw OdError(eFileNotFound, name + ": no such file");
    throw OdError(eFileAccessError, "cannot open " + name + ": " + std::strerror(err));
  }
  struct FdCloser {
    int fd;
    ~FdCloser() { ::close(fd); }
  } closer{fd};
  struct stat info {};
  if (::fstat(fd, &info) != 0)
    throw OdError(eFileAccessError, "cannot read " + name + ": " + std::strerror(errno));
  if (const char* kind = OdFileStamp::kindOf(info.st_mode)) {
    if (S_ISDIR(info.st_mode))
      throw OdError(eFileAccessError, name + " is a folder, not a drawing");
    throw OdError(eFileAccessError, name + " is not a regular file (" + kind + "), not a drawing");
  }
  if (static_cast<std::uint64_t>(info.st_size) > std::numeric_limits<std::uint32_t>::max())
    throw OdError(eBadDxfFile, name + ": files of 4 GB and more are not supported");
  DxfFileBytes bytes(static_cast<std::size_t>(info.st_size));
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::read(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) throw OdError(eFileAccessError, "cannot read " + name + ": " + std::strerror(errno));
    if (n == 0) break;  // the file shrank while being read: parse what is there
    done += static_cast<std::size_t>(n);
  }
  bytes.resize(done);
  DxfPageAllocator<char>::releaseUnused(bytes.data(), bytes.size(), bytes.capacity());
  return bytes;
}

}  // namespace

std::unique_ptr<DxfDocument> DxfReader::readFile(const std::filesystem::path& path) {
  return parseDocument(std::make_unique<DxfDocument>(path.string(), readWholeFile(path)));
}

std::unique_ptr<DxfDocument> DxfReader::readBuffer(std::string bytes, std::string name) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max())
    throw OdError(eBadDxfFile, name + ": files of 4 GB and more are not supported");
  return parseDocument(std::make_unique<DxfDocument>(std::move(name), std::move(bytes)));
}

std::unique_ptr<DxfDocument> DxfReader::parseDocument(std::unique_ptr<DxfDocument> doc) {
  DxfReader reader(*doc);
  reader.parse();
  return doc;
}

void DxfReader::failAt(std::size_t offset, int code, const std::string& what) const {
  std::string_view bytes = doc_.bytes();
  std::string where;
  if (doc_.layout_.format == DxfFormat::kBinary) {
    where = "byte offset " + std::to_string(offset);
  } else {
    offset = std::min(offset, bytes.size());
    std::size_t line = 1;
    // An empty file has no bytes to search (and its data pointer may be null).
    const char* end = bytes.data() + offset;
    for (const char* p = bytes.data(); offset > 0 && p < end; ++p) {
      p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
      if (!p) break;
      ++line;
    }
    where = "line " + std::to_string(line);
  }
  if (code != std::numeric_limits<int>::min()) where += ", group code " + std::to_string(code);
  throw OdError(eBadDxfFile, doc_.fileName() + ": " + where + ": " + what);
}

void DxfReader::parse() {
  std::string_view bytes = doc_.bytes();
  constexpr int kNoCode = std::numeric_limits<int>::min();
  if (bytes.empty()) failAt(0, kNoCode, "the file is empty");
  if (bytes.substr(0, 4) == "AC10")
    throw OdError(eDwgNotSupported,
                  doc_.fileName() +
                      ": this is a DWG drawing, and DWG is not read yet; save the drawing as DXF "
                      "and use that file");
  if (bytes.substr(0, kBinarySentinel.size()) == kBinarySentinel) {
    doc_.layout_.format = DxfFormat::kBinary;
    parseBinary();
  } else if (bytes.substr(0, 18) == "AutoCAD Binary DXF") {
    doc_.layout_.format = DxfFormat::kBinary;
    failAt(0, kNoCode, "the binary DXF sentinel is damaged (it must end with CR LF SUB NUL)");
  } else {
    parseAscii();
  }
  if (!sawEof_) failAt(bytes.size(), kNoCode, "unexpected end of file: the file has no 0/EOF");
  // The reservation assumed the shortest tags; what real tags left untouched goes back.
  DxfPageAllocator<DxfTag>::releaseUnused(doc_.tags_.data(), doc_.tags_.size(),
                                          doc_.tags_.capacity());
  buildStructure();
  readHeaderVersion();
}

// Built in place: copying a finished six-byte tag in costs several instructions more.
inline void DxfReader::addTag(int code, std::size_t valueBegin, std::uint8_t flags) {
  assert(DxfGroupCode::valueType(code) != DxfValueType::kUnknown);  // see DxfTag::kMaxCode
  doc_.tags_.emplace_back(code, static_cast<std::uint32_t>(valueBegin), flags);
}

inline void DxfReader::startObject(std::size_t byteBegin, std::string_view type) {
  // Only the stand-in for tags before the first group-0 tag can still be empty.
  if (!objects_.empty() && objects_.back().firstTag == doc_.tags_.size()) objects_.pop_back();
  if (type.size() >= 6 && type.size() < 16) {
    type = trimBlanks(type);
    const auto index = static_cast<std::uint32_t>(objects_.size());
    if (type == "SECTION") marks_.push_back({index, Kind::kSection});
    if (type == "ENDSEC") marks_.push_back({index, Kind::kEndsec});
  }
  objects_.push_back(
      {static_cast<std::uint32_t>(doc_.tags_.size()), static_cast<std::uint32_t>(byteBegin)});
}

void DxfReader::checkAsciiValue(int code, DxfValueType type, std::string_view value,
                                std::size_t valueBegin) const {
  if (DxfGroupCode::isInteger(type)) {
    std::int64_t number = 0;
    if (!parseSmallInteger(value, number) && !DxfGroupCode::parseInteger(value, number))
      failAt(valueBegin, code, "value " + quoteForMessage(value) + " is not an integer");
    if (number < DxfGroupCode::minInteger(type) || number > DxfGroupCode::maxInteger(type))
      failAt(valueBegin, code,
             "value " + std::to_string(number) + " is out of range for " + typeName(type));
  } else if (type == DxfValueType::kDouble) {
    double number = 0;
    if (!isPlainDecimal(value) && !DxfGroupCode::parseReal(value, number))
      failAt(valueBegin, code, "value " + quoteForMessage(value) + " is not a number");
  } else if (!DxfGroupCode::parseHex(value, nullptr)) {
    failAt(valueBegin, code, "value " + quoteForMessage(value) + " is not hex data");
  }
}

void DxfReader::parseAscii() {
  const char* base = doc_.bytes().data();
  const std::size_t size = doc_.bytes().size();
  std::size_t p = doc_.bytes().substr(0, 3) == kUtf8Bom ? 3 : 0;
  doc_.preambleEnd_ = static_cast<std::uint32_t>(p);

  // The layout of the first code lines is the layout of the file: the line ending of the
  // first, the padding of the first code shorter than three digits (a leading "999" comment
  // says nothing about padding).
  if (const char* nl = static_cast<const char*>(std::memchr(base + p, '\n', size - p))) {
    std::size_t lineEnd = static_cast<std::size_t>(nl - base);
    doc_.layout_.crlf = lineEnd > p && base[lineEnd - 1] == '\r';
  }
  for (std::size_t line = p, tags = 0; line < size && tags < 8; ++tags) {
    const char* nl = static_cast<const char*>(std::memchr(base + line, '\n', size - line));
    if (!nl) break;
    std::string_view code(base + line, static_cast<std::size_t>(nl - base) - line);
    if (!code.empty() && code.back() == '\r') code.remove_suffix(1);
    const std::size_t digits = code.size() - std::min(code.size(), code.find_first_not_of(' '));
    if (digits > 0 && digits < 3) {
      if (code.front() == ' ') doc_.layout_.codeWidth = static_cast<int>(code.size());
      break;
    }
    // Past the value line to the next code line.
    const char* valueEnd = static_cast<const char*>(
        std::memchr(nl + 1, '\n', size - static_cast<std::size_t>(nl + 1 - base)));
    if (!valueEnd) break;
    line = static_cast<std::size_t>(valueEnd + 1 - base);
  }

  // Every tag takes at least two lines of at least one character: this never reallocates,
  // and pages of the reservation that are not used are never touched.
  doc_.tags_.reserve(size / 4 + 1);
  objects_.reserve(size / 64 + 16);
  startObject(p, {});
  while (p < size) {
    const std::size_t codeBegin = p;
    const char* nl = static_cast<const char*>(std::memchr(base + p, '\n', size - p));
    const char* s = base + p;
    const char* e = nl ? nl : base + size;
    if (e > s && e[-1] == '\r') --e;
    std::string_view codeText(s, static_cast<std::size_t>(e - s));
    while (s < e && (*s == ' ' || *s == '\t')) ++s;
    while (e > s && (e[-1] == ' ' || e[-1] == '\t')) --e;
    bool negative = s < e && *s == '-';
    if (negative) ++s;
    if (s == e || e - s > 5)
      failAt(codeBegin, std::numeric_limits<int>::min(),
             quoteForMessage(codeText) + " is not a group code");
    int code = 0;
    for (; s < e; ++s) {
      unsigned digit = static_cast<unsigned char>(*s) - static_cast<unsigned>('0');
      if (digit > 9)
        failAt(codeBegin, std::numeric_limits<int>::min(),
               quoteForMessage(codeText) + " is not a group code");
      code = code * 10 + static_cast<int>(digit);
    }
    if (negative) code = -code;
    const DxfValueType type = DxfGroupCode::valueType(code);
    if (type == DxfValueType::kUnknown) failAt(codeBegin, code, "unknown group code");
    if (!nl) failAt(codeBegin, code, "unexpected end of file: the value line is missing");

    const std::size_t valueBegin = static_cast<std::size_t>(nl - base) + 1;
    const char* vnl =
        static_cast<const char*>(std::memchr(base + valueBegin, '\n', size - valueBegin));
    std::size_t valueEnd = vnl ? static_cast<std::size_t>(vnl - base) : size;
    const std::size_t next = vnl ? valueEnd + 1 : size;
    if (!vnl && valueBegin == size)
      failAt(codeBegin, code, "unexpected end of file: the value line is missing");
    if (valueEnd > valueBegin && base[valueEnd - 1] == '\r') --valueEnd;
    std::string_view value(base + valueBegin, valueEnd - valueBegin);

    if (type != DxfValueType::kString) checkAsciiValue(code, type, value, valueBegin);

    if (code == 0) {
      startObject(codeBegin, value);
    }
    addTag(code, valueBegin, 0);
    p = next;
    if (code == 0 && isEof(value)) {
      endByte_ = static_cast<std::uint32_t>(next);
      sawEof_ = true;
      doc_.trailerBegin_ = static_cast<std::uint32_t>(next);
      return;
    }
  }
}

void DxfReader::parseBinary() {
  const unsigned char* base = reinterpret_cast<const unsigned char*>(doc_.bytes().data());
  const std::size_t size = doc_.bytes().size();
  std::size_t p = kBinarySentinel.size();
  doc_.preambleEnd_ = static_cast<std::uint32_t>(p);
  constexpr int kNoCode = std::numeric_limits<int>::min();
  if (size < p + 2) failAt(p, kNoCode, "unexpected end of file after the binary sentinel");

  // From R13 group codes take two bytes; before, one byte with 255 escaping a 2-byte code.
  // The first tag tells: a one-byte file starts with "0" and a non-empty word (00 'S'...) or
  // with the escape byte (a comment, 999); anything else is read as two-byte codes.
  bool twoByte = !(base[p] == 255 || (base[p] == 0 && base[p + 1] != 0));
  doc_.layout_.twoByteCodes = twoByte;

  // Every tag takes at least three bytes (see the ASCII reservation).
  doc_.tags_.reserve(size / 3 + 1);
  objects_.reserve(size / 64 + 16);
  startObject(p, {});
  while (p < size) {
    const std::size_t tagBegin = p;
    int code = 0;
    if (twoByte || base[p] == 255) {
      if (!twoByte) ++p;
      if (size - p < 2) failAt(tagBegin, kNoCode, "unexpected end of file inside a group code");
      code = static_cast<std::int16_t>(base[p] | (base[p + 1] << 8));
      p += 2;
    } else {
      code = base[p++];
    }
    const DxfValueType type = DxfGroupCode::valueType(code);
    std::size_t valueBegin = p;
    std::size_t valueEnd = p;
    switch (type) {
      case DxfValueType::kUnknown:
        failAt(tagBegin, code, "unknown group code (the file is damaged or not binary DXF)");
      case DxfValueType::kString: {
        const char* text = reinterpret_cast<const char*>(base);
        const char* nul = dxfFindByte(text + p, text + size, 0);
        if (!nul) failAt(tagBegin, code, "unexpected end of file inside a string value");
        valueEnd = static_cast<std::size_t>(nul - text);
        p = valueEnd + 1;
        break;
      }
      case DxfValueType::kBinary: {
        if (p >= size) failAt(tagBegin, code, "unexpected end of file before a binary chunk");
        std::size_t length = base[p];
        if (size - p - 1 < length)
          failAt(tagBegin, code,
                 "binary chunk of " + std::to_string(length) + " bytes runs past the end of file");
        valueBegin = p + 1;
        valueEnd = valueBegin + length;
        p = valueEnd;
        break;
      }
      default: {
        std::size_t length = static_cast<std::size_t>(DxfGroupCode::binarySize(type));
        if (size - p < length) failAt(tagBegin, code, "unexpected end of file inside a value");
        valueEnd = p + length;
        p = valueEnd;
        break;
      }
    }
    if (code == 0) {
      startObject(tagBegin, std::string_view(reinterpret_cast<const char*>(base) + valueBegin,
                                             valueEnd - valueBegin));
    }
    addTag(code, valueBegin, DxfTag::kBinaryForm);
    // Blanks around EOF are allowed as in ASCII files, so that a converted file reads back.
    if (code == 0 && isEof(std::string_view(reinterpret_cast<const char*>(base) + valueBegin,
                                            valueEnd - valueBegin))) {
      endByte_ = static_cast<std::uint32_t>(p);
      sawEof_ = true;
      doc_.trailerBegin_ = static_cast<std::uint32_t>(p);
      return;
    }
  }
}

void DxfReader::buildStructure() {
  // The last object is "0 EOF".
  const std::size_t count = objects_.size() - 1;
  auto makeObject = [&](std::size_t i) {
    const bool last = i + 1 == objects_.size();
    const std::uint32_t endTag =
        last ? static_cast<std::uint32_t>(doc_.tags_.size()) : objects_[i + 1].firstTag;
    const std::uint32_t endByte = last ? endByte_ : objects_[i + 1].byteBegin;
    return DxfObject(doc_, objects_[i].firstTag, endTag - objects_[i].firstTag,
                     objects_[i].byteBegin, endByte);
  };
  std::size_t sections = 0;
  for (const Mark& mark : marks_) sections += mark.kind == Kind::kSection;
  doc_.sections_.reserve(sections);

  DxfSection* current = nullptr;
  bool inTail = false;
  std::size_t nextMark = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const bool marked = nextMark < marks_.size() && marks_[nextMark].object == i;
    const bool opens = marked && marks_[nextMark++].kind == Kind::kSection;
    DxfObject object = makeObject(i);
    if (opens) {
      std::size_t nameAt = object.find(2);
      std::string name(nameAt == DxfObject::npos ? std::string_view()
                                                 : trimBlanks(object.rawValue(nameAt)));
      doc_.sections_.push_back(std::make_unique<DxfSection>(std::move(name), std::move(object)));
      current = doc_.sections_.back().get();
      // The body runs to the next mark, so its list is allocated once.
      std::size_t bodyEnd = nextMark < marks_.size() ? marks_[nextMark].object : count;
      current->objects().reserve(std::min(bodyEnd, count) - i - 1);
      inTail = false;
    } else if (!current) {
      doc_.prologue_.push_back(std::move(object));
    } else if (inTail || marked) {
      current->tail().push_back(std::move(object));
      inTail = true;
    } else {
      current->objects().push_back(std::move(object));
    }
  }
  doc_.eof_ = std::make_unique<DxfObject>(makeObject(count));
  objects_ = {};
  marks_ = {};
}

void DxfReader::readHeaderVersion() {
  auto first = [&](std::string_view name) -> std::string {
    auto values = doc_.headerVariable(name);
    if (values.empty() || DxfGroupCode::valueType(values.front().code) != DxfValueType::kString)
      return {};
    return std::string(doc_.rawValue(values.front()));
  };
  doc_.setVersion(first("$ACADVER"), first("$DWGCODEPAGE"));
}
