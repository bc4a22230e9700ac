#include "DxfTagSink.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <stdexcept>

namespace {

constexpr std::size_t kFlushAt = std::size_t(1) << 20;

// The format's own constant that opens every binary file.
constexpr std::string_view kBinarySentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

// Bytes of an integer value in a binary file.
int integerWidth(int code) {
  if (code >= 290 && code <= 299) return 1;
  if ((code >= 90 && code <= 99) || (code >= 420 && code <= 459) || code == 1071) return 4;
  if (code >= 160 && code <= 169) return 8;
  return 2;
}

template <typename T>
void appendLittleEndian(std::string& out, T value) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  out.append(bytes, sizeof(T));
}

}  // namespace

DxfTagSink::DxfTagSink(const std::filesystem::path& path, Layout layout)
    : name_(path.string()), layout_(layout) {
  file_ = std::fopen(name_.c_str(), "wb");
  if (!file_) fail("cannot create");
  buffer_.reserve(kFlushAt + 4096);
  if (layout_.binary) buffer_.append(kBinarySentinel);
}

DxfTagSink::~DxfTagSink() {
  if (file_) std::fclose(file_);
}

void DxfTagSink::fail(const char* what) const {
  throw std::runtime_error(std::string(what) + " " + name_ + ": " + std::strerror(errno));
}

void DxfTagSink::code(int code) {
  if (layout_.binary) {
    if (layout_.twoByteCodes) {
      appendLittleEndian<std::int16_t>(buffer_, static_cast<std::int16_t>(code));
    } else if (code >= 0 && code < 255) {
      buffer_.push_back(static_cast<char>(code));
    } else {
      buffer_.push_back(static_cast<char>(255));
      appendLittleEndian<std::int16_t>(buffer_, static_cast<std::int16_t>(code));
    }
    return;
  }
  char digits[8];
  auto end = std::to_chars(digits, digits + sizeof digits, code).ptr;
  for (auto width = end - digits; width < 3; ++width) buffer_.push_back(' ');
  buffer_.append(digits, end);
  endLine();
}

void DxfTagSink::endLine() {
  if (layout_.crlf) buffer_.push_back('\r');
  buffer_.push_back('\n');
}

void DxfTagSink::flushIfFull() {
  if (buffer_.size() < kFlushAt) return;
  if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) fail("cannot write");
  written_ += buffer_.size();
  buffer_.clear();
}

void DxfTagSink::text(int c, std::string_view value) {
  code(c);
  buffer_.append(value);
  if (layout_.binary)
    buffer_.push_back('\0');
  else
    endLine();
  flushIfFull();
}

void DxfTagSink::real(int c, double value) {
  code(c);
  if (layout_.binary) {
    appendLittleEndian(buffer_, value);
  } else {
    char digits[32];
    auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    buffer_.append(digits, end);
    // Written with a decimal point, as real values usually are.
    if (std::string_view(digits, static_cast<std::size_t>(end - digits)).find_first_of(".e") ==
        std::string_view::npos)
      buffer_.append(".0");
    endLine();
  }
  flushIfFull();
}

void DxfTagSink::integer(int c, std::int64_t value) {
  code(c);
  if (layout_.binary) {
    switch (integerWidth(c)) {
      case 1:
        buffer_.push_back(static_cast<char>(value));
        break;
      case 4:
        appendLittleEndian(buffer_, static_cast<std::int32_t>(value));
        break;
      case 8:
        appendLittleEndian(buffer_, value);
        break;
      default:
        appendLittleEndian(buffer_, static_cast<std::int16_t>(value));
    }
  } else {
    char digits[24];
    auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    buffer_.append(digits, end);
    endLine();
  }
  flushIfFull();
}

void DxfTagSink::handle(int c, std::uint64_t value) {
  char digits[20];
  auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
  for (char* p = digits; p != end; ++p)
    if (*p >= 'a') *p = static_cast<char>(*p - 'a' + 'A');
  text(c, std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

void DxfTagSink::chunk(int c, std::string_view bytes) {
  code(c);
  if (layout_.binary) {
    buffer_.push_back(static_cast<char>(bytes.size()));
    buffer_.append(bytes);
  } else {
    static const char kHex[] = "0123456789ABCDEF";
    for (unsigned char b : bytes) {
      buffer_.push_back(kHex[b >> 4]);
      buffer_.push_back(kHex[b & 15]);
    }
    endLine();
  }
  flushIfFull();
}

void DxfTagSink::point(int c, double x, double y, double z) {
  real(c, x);
  real(c + 10, y);
  real(c + 20, z);
}

void DxfTagSink::finish() {
  if (!buffer_.empty() && std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size())
    fail("cannot write");
  written_ += buffer_.size();
  buffer_.clear();
  std::FILE* file = file_;
  file_ = nullptr;
  if (std::fclose(file) != 0) fail("cannot close");
}
