#include "ReportTarget.h"

#include <sys/stat.h>

#include <fstream>
#include <system_error>

#include "BackupName.h"
#include "OdAtomicFile.h"
#include "OdError.h"

namespace stcheck {

namespace fs = std::filesystem;

namespace {

fs::path canonicalOf(const fs::path& path) {
  std::error_code ec;
  fs::path canonical = fs::weakly_canonical(fs::absolute(path, ec), ec);
  return ec ? path.lexically_normal() : canonical;
}

// Both exist and are one file (the same inode, also through links).
bool sameInode(const fs::path& a, const fs::path& b) {
  struct stat sa {
  }, sb{};
  return ::stat(a.c_str(), &sa) == 0 && ::stat(b.c_str(), &sb) == 0 && sa.st_dev == sb.st_dev &&
         sa.st_ino == sb.st_ino;
}

// The file begins as a DXF drawing does, in either form. Only a regular file is read: a pipe
// or a terminal (`-o /dev/stdout`) would block or take the reader's input.
bool looksLikeDrawing(const fs::path& path) {
  std::error_code ec;
  if (!fs::is_regular_file(path, ec)) return false;
  std::ifstream in(path, std::ios::binary);
  char head[64] = {};
  in.read(head, sizeof head);
  const std::string text(head, static_cast<std::size_t>(in.gcount()));
  if (text.rfind("AutoCAD Binary DXF", 0) == 0) return true;
  std::size_t at = text.find_first_not_of(" \t\r\n");
  if (at == std::string::npos || text[at] != '0') return false;
  at = text.find_first_not_of(" \t\r\n", at + 1);
  return at != std::string::npos && text.compare(at, 7, "SECTION") == 0;
}

}  // namespace

ReportTarget::ReportTarget(fs::path output)
    : output_(std::move(output)), canonical_(canonicalOf(output_)) {
  // Whatever the run reads, a report never goes over a drawing, standards file or backup.
  if (BackupName::isDrawingName(output_) || BackupName::isBackupName(output_) ||
      looksLikeDrawing(output_))
    refusal_ = "the report cannot be written to " + output_.string() +
               ": that is the name of a drawing, a standards file or a backup";
}

void ReportTarget::protect(const fs::path& file, const std::string& role) {
  if (!refusal_.empty()) return;
  if (canonicalOf(file) == canonical_ || sameInode(file, output_))
    refusal_ = "the report cannot be written to " + output_.string() + ": it is " + role + " (" +
               file.string() + ")";
}

void ReportTarget::write(const std::string& text) const {
  if (!refusal_.empty()) throw OdError(eFileWriteError, refusal_);
  OdAtomicFile file(output_);
  file.write(text);
  file.commit();
}

}  // namespace stcheck
