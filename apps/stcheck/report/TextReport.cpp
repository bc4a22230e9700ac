#include "TextReport.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "TerminalText.h"

namespace stcheck {

namespace {

class Painter {
 public:
  explicit Painter(bool on) : on_(on) {}
  std::string red(const std::string& s) const { return paint("31;1", s); }
  std::string green(const std::string& s) const { return paint("32", s); }
  std::string yellow(const std::string& s) const { return paint("33", s); }
  std::string bold(const std::string& s) const { return paint("1", s); }
  std::string dim(const std::string& s) const { return paint("2", s); }

 private:
  std::string paint(const char* code, const std::string& s) const {
    return on_ ? std::string("\x1b[") + code + "m" + s + "\x1b[0m" : s;
  }
  bool on_;
};

std::string plural(std::size_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string fileName(const std::string& path) {
  std::size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A name with no standard counterpart may have every object of its kind as a candidate; a
// person needs the first few, the JSON report lists more.
constexpr std::size_t kFixesShown = 5;

void writeProblem(std::ostringstream& out, const ReportProblem& p, const Painter& paint) {
  std::string state = p.fixed       ? paint.green("fixed")
                      : p.ignored() ? paint.yellow("ignored by " + terminalSafe(p.ignoredBy))
                                    : paint.red("problem");
  out << "    " << state << "  " << paint.bold(terminalSafe(p.shownName()));
  if (!p.handle.empty()) out << paint.dim(" [" + terminalSafe(p.handle) + "]");
  out << "  " << terminalSafe(p.title) << "\n";
  if (!p.description.empty()) out << "      " << terminalSafe(p.description) << "\n";
  for (const ReportProperty& prop : p.properties)
    out << "      " << terminalSafe(prop.name) << ": " << terminalSafe(prop.current) << " -> "
        << terminalSafe(prop.standard) << "\n";
  if (p.fixed) {
    if (!p.fixedWith.empty()) out << "      fixed with " << terminalSafe(p.fixedWith) << "\n";
    return;
  }
  for (std::size_t i = 0; i < p.fixes.size() && i < kFixesShown; ++i) {
    const ReportFix& fix = p.fixes[i];
    out << "      fix: " << terminalSafe(fix.name);
    if (!fix.standardsFile.empty()) out << " (" << terminalSafe(fileName(fix.standardsFile)) << ")";
    if (fix.recommended) out << " " << paint.bold("recommended");
    out << "\n";
  }
  const std::size_t shown = std::min(p.fixes.size(), kFixesShown);
  if (const std::size_t more = p.fixes.size() - shown + p.moreFixes; more > 0)
    out << "      "
        << paint.dim("... and " + std::to_string(more) + " more" +
                     (p.fixes.size() > shown ? " (see --format json)" : ""))
        << "\n";
}

void writeDrawing(std::ostringstream& out, const DrawingReport& d, const Painter& paint) {
  out << paint.bold(terminalSafe(d.path)) << "\n";
  if (d.failed()) {
    out << "  " << paint.red("not checked: ") << terminalSafe(d.error) << "\n\n";
    return;
  }
  if (!d.standards.empty()) {
    out << "  standards:";
    for (const std::string& s : d.standards) out << " " << terminalSafe(s);
    out << "\n";
  }
  for (const std::string& s : d.missingStandards)
    out << "  " << paint.red("missing standards file: ") << terminalSafe(s) << "\n";

  // Problems grouped by plug-in, plug-ins in the order they reported.
  std::vector<std::string> order;
  std::map<std::string, std::vector<const ReportProblem*>> byPlugin;
  for (const ReportProblem& p : d.problems) {
    auto& group = byPlugin[p.plugin];
    if (group.empty()) order.push_back(p.plugin);
    group.push_back(&p);
  }
  for (const std::string& plugin : order) {
    const auto& group = byPlugin[plugin];
    const std::string& name =
        group.front()->pluginName.empty() ? plugin : group.front()->pluginName;
    out << "  " << paint.bold(terminalSafe(name)) << paint.dim(" (" + terminalSafe(plugin) + ")")
        << "\n";
    for (const ReportProblem* p : group) writeProblem(out, *p, paint);
  }
  std::size_t remaining = d.remaining();
  out << "  " << plural(d.counts.found, "problem", "problems") << " found, "
      << d.counts.fixedAutomatically << " fixed automatically, " << d.counts.ignored << " ignored, "
      << (remaining ? paint.red(std::to_string(remaining) + " remaining")
                    : paint.green("0 remaining"));
  if (!d.backup.empty()) out << "; original kept as " << terminalSafe(d.backup);
  out << "\n";
  if (!d.notFixed.empty())
    out << "  " << paint.red("not fixed: ") << terminalSafe(d.notFixed) << "\n";
  out << "\n";
}

}  // namespace

std::string TextReport::write(const CheckReport& report, bool color) {
  Painter paint(color);
  std::ostringstream out;
  std::size_t remaining = 0, failed = 0, clean = 0;
  for (const DrawingReport& d : report.drawings) {
    writeDrawing(out, d, paint);
    if (d.failed())
      ++failed;
    else if (d.remaining() == 0)
      ++clean;
    remaining += d.failed() ? 0 : d.remaining();
  }
  out << plural(report.drawings.size(), "drawing", "drawings") << " checked: " << clean
      << " meet the standards, " << plural(remaining, "problem remains", "problems remain");
  if (failed) out << ", " << paint.red(plural(failed, "drawing", "drawings") + " not read");
  out << "\n";
  return out.str();
}

}  // namespace stcheck
