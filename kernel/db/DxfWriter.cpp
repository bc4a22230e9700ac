#include "DxfWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cmath>

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "DxfGroupCode.h"
#include "OdAtomicFile.h"
#include "OdError.h"

namespace {

// The format's own constant that opens every binary file.
constexpr std::string_view kBinarySentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

// Writes of at least this size bypass the buffer.
constexpr std::size_t kDirectWrite = std::size_t(1) << 16;
constexpr std::size_t kBufferSize = std::size_t(1) << 20;

template <typename T>
void appendLittleEndian(std::string& out, T value) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));  // little endian like every platform we build for
  out.append(bytes, sizeof(T));
}

std::string errnoText() {
  return std::strerror(errno);
}

}  // namespace

// Collects output into a string, or into a file through a buffer with large pieces written
// straight through, so that copying an untouched file costs one pass over its bytes.
class DxfWriter::Sink {
 public:
  explicit Sink(std::string& out) : out_(&out) {}
  Sink(int fd, const std::string& name) : fd_(fd), name_(name) { buffer_.reserve(kBufferSize); }

  void append(std::string_view bytes) {
    if (out_) {
      out_->append(bytes);
      return;
    }
    if (bytes.size() >= kDirectWrite) {
      flush();
      writeFully(bytes);
      return;
    }
    if (buffer_.size() + bytes.size() > kBufferSize) flush();
    buffer_.append(bytes);
  }
  // Scratch space for encoding one tag, reused.
  std::string& scratch() { return scratch_; }

  void flush() {
    if (out_ || buffer_.empty()) return;
    writeFully(buffer_);
    buffer_.clear();
  }

 private:
  void writeFully(std::string_view bytes) {
    while (!bytes.empty()) {
      ssize_t n = ::write(fd_, bytes.data(), bytes.size());
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) throw OdError(eFileWriteError, "cannot write " + name_ + ": " + errnoText());
      bytes.remove_prefix(static_cast<std::size_t>(n));
    }
  }

  std::string* out_ = nullptr;
  int fd_ = -1;
  std::string name_;
  std::string buffer_;
  std::string scratch_;
};

DxfWriter::DxfWriter(const DxfDocument& doc, std::optional<DxfFormat> format)
    : doc_(doc), format_(format.value_or(doc.format())) {}

std::string DxfWriter::toBytes() const {
  std::string out;
  out.reserve(doc_.bytes().size() + 4096);
  Sink sink(out);
  writeAll(sink);
  return out;
}

namespace {

// The first tag of a document, or null when it has none.
const DxfTag* firstTag(const DxfDocument& doc) {
  const DxfTag* first = nullptr;
  doc.forEachObject([&](const DxfObject& object) {
    if (!first && object.size() > 0) first = &object.tag(0);
  });
  return first;
}

// Readers tell one-byte group codes from two-byte ones by the first tag alone: one-byte files
// start with "0" and a non-empty word, or with the escaped comment code 999 (see
// DxfReader::parseBinary). A document that starts otherwise is written with two-byte codes
// whatever its release, or it would not read back.
bool startsAsOneByte(const DxfDocument& doc) {
  const DxfTag* first = firstTag(doc);
  return first && (first->code == 999 || (first->code == 0 && !doc.rawValue(*first).empty()));
}

// Two-byte codes whose low byte is 255, or 0 under a non-zero high byte, look like a one-byte
// start; a file cannot begin with one.
void checkTwoByteStart(const DxfDocument& doc) {
  const DxfTag* first = firstTag(doc);
  if (!first) return;
  const auto bits = static_cast<std::uint16_t>(first->code);
  if ((bits & 0xFF) == 0xFF || ((bits & 0xFF) == 0 && bits != 0))
    doc.fail(*first, "a binary file cannot start with this group code");
}

// Encodes tags of one document in one target layout.
class TagEncoder {
 public:
  TagEncoder(const DxfDocument& doc, DxfFormat format) : doc_(doc), format_(format) {
    if (format == doc.format()) {
      layout_ = doc.layout();
    } else if (format == DxfFormat::kAscii) {
      layout_.crlf = true;
      layout_.codeWidth = 3;
    } else {
      // A file without $ACADVER is taken for a release-12 one, as other readers take it.
      layout_.twoByteCodes = doc.versionNumber() >= 1012 || !startsAsOneByte(doc);
      if (layout_.twoByteCodes) checkTwoByteStart(doc);
    }
  }

  void encode(const DxfTag& tag, std::string& out) const {
    if (format_ == DxfFormat::kAscii) {
      if (!copyAsRead(tag, out)) encodeAscii(tag, out);
    } else {
      encodeBinary(tag, out);
    }
  }

 private:
  // A tag of a changed object that still holds the value read from an ASCII file written
  // back as ASCII keeps its two lines exactly: files pad group codes unevenly (" 3" in one
  // object, "  3" in the next) and end lines as they like, and a fix must not rewrite what
  // it did not change. False when the tag has no such lines, or they hold another code.
  bool copyAsRead(const DxfTag& tag, std::string& out) const {
    if (doc_.format() != DxfFormat::kAscii || tag.isBinaryForm() || tag.isInPool()) return false;
    const std::string_view source = doc_.bytes();
    const std::size_t valueBegin = tag.offset();
    if (valueBegin == 0 || valueBegin > source.size() || source[valueBegin - 1] != '\n')
      return false;
    std::size_t codeEnd = valueBegin - 1;
    if (codeEnd > 0 && source[codeEnd - 1] == '\r') --codeEnd;
    const std::size_t lineFeed = source.rfind('\n', codeEnd == 0 ? 0 : codeEnd - 1);
    const std::size_t codeBegin =
        (lineFeed == std::string_view::npos || lineFeed >= codeEnd) ? 0 : lineFeed + 1;
    if (codeBegin < doc_.preamble().size()) return false;
    std::string_view code = source.substr(codeBegin, codeEnd - codeBegin);
    while (!code.empty() && (code.front() == ' ' || code.front() == '\t')) code.remove_prefix(1);
    while (!code.empty() && (code.back() == ' ' || code.back() == '\t')) code.remove_suffix(1);
    int parsed = 0;
    auto [end, ec] = std::from_chars(code.data(), code.data() + code.size(), parsed);
    if (ec != std::errc() || end != code.data() + code.size() || parsed != tag.code) return false;
    std::size_t valueEnd = valueBegin + doc_.rawValue(tag).size();
    if (valueEnd < source.size() && source[valueEnd] == '\r') ++valueEnd;
    if (valueEnd < source.size() && source[valueEnd] == '\n') {
      out.append(source.substr(codeBegin, valueEnd + 1 - codeBegin));
    } else {  // the file's last line, without an ending
      out.append(source.substr(codeBegin, valueBegin + doc_.rawValue(tag).size() - codeBegin));
      newline(out);
    }
    return true;
  }

  void encodeAscii(const DxfTag& tag, std::string& out) const {
    char digits[16];
    auto [end, ec] = std::to_chars(digits, digits + sizeof digits, static_cast<int>(tag.code));
    std::size_t length = static_cast<std::size_t>(end - digits);
    if (length < static_cast<std::size_t>(layout_.codeWidth))
      out.append(static_cast<std::size_t>(layout_.codeWidth) - length, ' ');
    out.append(digits, length);
    newline(out);
    if (!tag.isBinaryForm()) {
      out.append(doc_.rawValue(tag));
    } else {
      DxfValueType type = DxfGroupCode::valueType(tag.code);
      if (type == DxfValueType::kString) {
        std::string_view raw = doc_.rawValue(tag);
        // Object types and structure words ("SECTION", "EOF") are recognised with the blanks
        // around them trimmed, so their tabs are kept rather than caret-encoded.
        const bool keepTabs = tag.code == 0;
        if (DxfGroupCode::needsCaretEncoding(raw, keepTabs))
          out.append(DxfGroupCode::caretEncode(raw, keepTabs));
        else
          out.append(raw);
      } else if (type == DxfValueType::kDouble) {
        const double value = doc_.real(tag);
        // Text has one "nan" for every not-a-number bit pattern a binary file may hold, so
        // such a value would come back changed.
        if (std::isnan(value))
          doc_.fail(tag, "the value is not a number, which an ASCII file cannot hold");
        out.append(DxfGroupCode::formatReal(value));
      } else if (type == DxfValueType::kBinary) {
        out.append(DxfGroupCode::formatHex(doc_.rawValue(tag)));
      } else {
        out.append(std::to_string(doc_.integer(tag)));
      }
    }
    newline(out);
  }

  void newline(std::string& out) const {
    if (layout_.crlf) out.push_back('\r');
    out.push_back('\n');
  }

  void encodeBinary(const DxfTag& tag, std::string& out) const {
    if (layout_.twoByteCodes) {
      appendLittleEndian<std::int16_t>(out, tag.code);
    } else if (tag.code >= 0 && tag.code < 255) {
      out.push_back(static_cast<char>(tag.code));
    } else {
      out.push_back(static_cast<char>(255));
      appendLittleEndian<std::int16_t>(out, tag.code);
    }
    DxfValueType type = DxfGroupCode::valueType(tag.code);
    // A text line that holds a carriage return cannot come back from binary: the text writer
    // ends its lines with one.
    if (tag.code == 0 && !tag.isBinaryForm() &&
        doc_.rawValue(tag).find('\r') != std::string_view::npos)
      doc_.fail(tag, "an object type with a carriage return cannot be converted");
    if (tag.isBinaryForm()) {
      // Read only here: reading a value scans for its end, and the text-form cases below
      // read theirs through real(), integer() and the like.
      const std::string_view raw = doc_.rawValue(tag);
      if (type == DxfValueType::kBinary) out.push_back(static_cast<char>(raw.size()));
      out.append(raw);
      if (type == DxfValueType::kString || type == DxfValueType::kUnknown) out.push_back('\0');
      return;
    }
    switch (type) {
      case DxfValueType::kDouble:
        appendLittleEndian<double>(out, doc_.real(tag));
        break;
      case DxfValueType::kInt16:
        appendLittleEndian<std::int16_t>(out, static_cast<std::int16_t>(doc_.integer(tag)));
        break;
      case DxfValueType::kInt32:
        appendLittleEndian<std::int32_t>(out, static_cast<std::int32_t>(doc_.integer(tag)));
        break;
      case DxfValueType::kInt64:
        appendLittleEndian<std::int64_t>(out, doc_.integer(tag));
        break;
      case DxfValueType::kBool:
        out.push_back(static_cast<char>(doc_.integer(tag)));
        break;
      case DxfValueType::kBinary: {
        std::string bytes = doc_.binaryChunk(tag);
        if (bytes.size() > 255)
          doc_.fail(tag,
                    "a binary chunk of more than 255 bytes cannot be written to a binary file");
        out.push_back(static_cast<char>(bytes.size()));
        out.append(bytes);
        break;
      }
      default: {
        std::string bytes = doc_.stringBytes(tag);
        if (bytes.find('\0') != std::string::npos)
          doc_.fail(tag, "a string with a NUL byte cannot be written to a binary file");
        out.append(bytes);
        out.push_back('\0');
        break;
      }
    }
  }

  const DxfDocument& doc_;
  DxfFormat format_;
  DxfDocument::Layout layout_;
};

}  // namespace

void DxfWriter::writeAll(Sink& sink) const {
  const bool sameFormat = format_ == doc_.format();
  const std::string_view source = doc_.bytes();
  TagEncoder encoder(doc_, format_);

  // Untouched objects lie back to back in the file: their ranges are merged into one copy.
  std::size_t pendingBegin = 0;
  std::size_t pendingEnd = 0;
  auto flushPending = [&] {
    if (pendingEnd > pendingBegin)
      sink.append(source.substr(pendingBegin, pendingEnd - pendingBegin));
    pendingBegin = pendingEnd = 0;
  };
  auto writeObject = [&](const DxfObject& object) {
    if (sameFormat && !object.isModified()) {
      if (pendingEnd != object.sourceBegin() || pendingEnd == pendingBegin) {
        flushPending();
        pendingBegin = object.sourceBegin();
      }
      pendingEnd = object.sourceEnd();
      return;
    }
    flushPending();
    std::string& scratch = sink.scratch();
    scratch.clear();
    for (const DxfTag& tag : object.tags()) encoder.encode(tag, scratch);
    sink.append(scratch);
  };

  if (sameFormat)
    sink.append(doc_.preamble());
  else if (format_ == DxfFormat::kBinary)
    sink.append(kBinarySentinel);
  for (const DxfObject& object : doc_.prologue()) writeObject(object);
  for (std::size_t i = 0; i < doc_.sectionCount(); ++i) {
    const DxfSection& section = doc_.section(i);
    writeObject(section.head());
    for (const DxfObject& object : section.objects()) writeObject(object);
    for (const DxfObject& object : section.tail()) writeObject(object);
  }
  writeObject(doc_.eofObject());
  flushPending();
  if (sameFormat) sink.append(doc_.trailer());
  sink.flush();
}

void DxfWriter::save(const std::filesystem::path& path,
                     const OdAtomicFile::Options& options) const {
  OdAtomicFile file(path, options);
  Sink sink(file.descriptor(), path.string());
  writeAll(sink);
  file.commit();
}
