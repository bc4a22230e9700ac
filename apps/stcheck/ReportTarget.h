#pragma once

#include <filesystem>
#include <string>

namespace stcheck {

// The file named by -o, and the files of the run it must never replace: a report written
// over a drawing, a standards file or a backup would destroy what the user trusted the run
// with. The report is written whole or not at all (OdAtomicFile), never through a link.
class ReportTarget {
 public:
  explicit ReportTarget(std::filesystem::path output);

  // Notes a file the run reads or writes; `role` says what it is ("the drawing being
  // checked"). When the report would replace it, refusal() says so.
  void protect(const std::filesystem::path& file, const std::string& role);
  // Why the report may not go where it should, naming both files; empty when it may.
  const std::string& refusal() const { return refusal_; }

  // Writes the report; throws OdError naming the file and the reason.
  void write(const std::string& text) const;

 private:
  std::filesystem::path output_;
  std::filesystem::path canonical_;
  std::string refusal_;
};

}  // namespace stcheck
