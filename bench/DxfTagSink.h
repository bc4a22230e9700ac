#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

// Writes group-code/value pairs to a new DXF file, as ASCII lines or as binary records, for
// generating benchmark drawings. It knows only as much of the format as writing needs (the
// width of each integer group code in binary files) and is independent of the kernel, so a
// drawing it writes is an outside input to the reader.
//
// Values are passed already encoded (strings as the bytes the file should hold). Every
// failure to write throws std::runtime_error naming the file; the destructor closes the file
// without checking, so call finish() to know it was written.
class DxfTagSink {
 public:
  struct Layout {
    bool binary = false;
    bool crlf = false;         // ASCII: lines end with CR LF
    bool twoByteCodes = true;  // binary: 2-byte group codes (R13 on), else 1 byte + escape
  };

  DxfTagSink(const std::filesystem::path& path, Layout layout);
  ~DxfTagSink();
  DxfTagSink(const DxfTagSink&) = delete;
  DxfTagSink& operator=(const DxfTagSink&) = delete;

  void text(int code, std::string_view value);
  void real(int code, double value);
  // The binary width comes from the group code (16, 32 or 64 bits, or 1 byte for 290-299).
  void integer(int code, std::int64_t value);
  // A handle as upper-case hex text.
  void handle(int code, std::uint64_t value);
  // A binary chunk (310-319, 1004) of at most 127 bytes: hex text in ASCII files.
  void chunk(int code, std::string_view bytes);
  // x, y and z under `code`, `code` + 10 and `code` + 20.
  void point(int code, double x, double y, double z);
  // Flushes and closes the file.
  void finish();

  std::uint64_t bytesWritten() const noexcept { return written_ + buffer_.size(); }

 private:
  void code(int code);
  void endLine();
  void flushIfFull();
  [[noreturn]] void fail(const char* what) const;

  std::string name_;
  Layout layout_;
  std::FILE* file_ = nullptr;
  std::string buffer_;
  std::uint64_t written_ = 0;
};
