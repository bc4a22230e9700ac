#include "HtmlReport.h"

#include <map>
#include <sstream>

#include "XmlText.h"

namespace stcheck {

namespace {

const char* kStyle = R"(body{font-family:system-ui,sans-serif;margin:2em;color:#222}
h1{font-size:1.5em}h2{font-size:1.2em;margin-top:2em;border-bottom:1px solid #ccc}
table{border-collapse:collapse;margin:.5em 0}th,td{border:1px solid #ccc;padding:.25em .6em;
text-align:left;vertical-align:top}th{background:#f3f3f3}td.n{text-align:right}
.remaining{color:#b00020;font-weight:bold}.fixed{color:#1b7a2e}.ignored{color:#8a6d00}
.error{color:#b00020}.small{color:#666;font-size:.9em}ul{margin:.2em 0}
)";

std::string e(const std::string& s) {
  return xmlEscape(s);
}

struct PluginTally {
  std::string name;
  std::size_t found = 0, fixed = 0, ignored = 0, remaining = 0;
};

// Per plug-in totals of a drawing, plug-ins in the order the drawing lists them, then any
// that reported without being listed.
std::vector<PluginTally> tallies(const DrawingReport& d) {
  std::vector<PluginTally> out;
  std::map<std::string, std::size_t> index;
  auto slot = [&](const std::string& cls, const std::string& name) -> PluginTally& {
    auto it = index.find(cls);
    if (it != index.end()) return out[it->second];
    index[cls] = out.size();
    out.push_back({name.empty() ? cls : name});
    return out.back();
  };
  for (const ReportPlugin& p : d.plugins) slot(p.className, p.name);
  for (const ReportProblem& p : d.problems) {
    PluginTally& t = slot(p.plugin, p.pluginName);
    ++t.found;
    if (p.fixed) ++t.fixed;
    if (p.ignored()) ++t.ignored;
    if (p.remains()) ++t.remaining;
  }
  return out;
}

void writeSummary(std::ostringstream& out, const CheckReport& report) {
  std::size_t found = 0, fixed = 0, ignored = 0, remaining = 0, failed = 0;
  for (const DrawingReport& d : report.drawings) {
    if (d.failed()) {
      ++failed;
      continue;
    }
    for (const ReportProblem& p : d.problems) {
      ++found;
      fixed += p.fixed;
      ignored += p.ignored();
      remaining += p.remains();
    }
  }
  out << "<table id=\"summary\" data-drawings=\"" << report.drawings.size() << "\" data-found=\""
      << found << "\" data-fixed=\"" << fixed << "\" data-ignored=\"" << ignored
      << "\" data-remaining=\"" << remaining << "\" data-failed=\"" << failed << "\">\n"
      << "<tr><th>Drawing</th><th>Plug-in</th><th>Problems</th><th>Fixed</th><th>Ignored</th>"
         "<th>Remaining</th></tr>\n";
  for (std::size_t i = 0; i < report.drawings.size(); ++i) {
    const DrawingReport& d = report.drawings[i];
    std::string link = "<a href=\"#drawing-" + std::to_string(i) + "\">" + e(d.path) + "</a>";
    if (d.failed()) {
      out << "<tr class=\"drawing\"><td>" << link << "</td><td colspan=\"5\" class=\"error\">"
          << "not checked: " << e(d.error) << "</td></tr>\n";
      continue;
    }
    std::vector<PluginTally> rows = tallies(d);
    if (rows.empty()) rows.push_back({"(no plug-ins)"});
    for (std::size_t r = 0; r < rows.size(); ++r) {
      const PluginTally& t = rows[r];
      out << "<tr class=\"drawing\">";
      if (r == 0) out << "<td rowspan=\"" << rows.size() << "\">" << link << "</td>";
      out << "<td>" << e(t.name) << "</td><td class=\"n\">" << t.found << "</td><td class=\"n\">"
          << t.fixed << "</td><td class=\"n\">" << t.ignored << "</td><td class=\"n"
          << (t.remaining ? " remaining" : "") << "\">" << t.remaining << "</td></tr>\n";
    }
  }
  out << "</table>\n<p id=\"totals\">" << report.drawings.size() << " drawing(s), " << found
      << " problem(s) found, " << fixed << " fixed, " << ignored << " ignored, <span class=\""
      << (remaining ? "remaining" : "fixed") << "\">" << remaining << " remaining</span>"
      << (failed ? ", <span class=\"error\">" + std::to_string(failed) + " not read</span>" : "")
      << ".</p>\n";
}

void writeProblem(std::ostringstream& out, const ReportProblem& p) {
  const char* state = p.fixed ? "fixed" : p.ignored() ? "ignored" : "remaining";
  out << "<tr class=\"problem " << state << "\"><td>"
      << e(p.pluginName.empty() ? p.plugin : p.pluginName) << "</td><td>" << e(p.shownName())
      << " <span class=\"small\">" << e(p.handle) << "</span></td><td><b>" << e(p.title)
      << "</b><br>" << e(p.description);
  if (!p.reason.empty()) out << "<br><span class=\"small\">" << e(p.reason) << "</span>";
  out << "</td><td>";
  if (!p.properties.empty()) {
    out << "<ul>";
    for (const ReportProperty& prop : p.properties)
      out << "<li>" << e(prop.name) << ": " << e(prop.current) << " &rarr; " << e(prop.standard)
          << "</li>";
    out << "</ul>";
  }
  out << "</td><td>";
  if (!p.fixes.empty()) {
    out << "<ul>";
    for (const ReportFix& fix : p.fixes)
      out << "<li>" << (fix.recommended ? "<b>" : "") << e(fix.name)
          << (fix.recommended ? "</b> (recommended)" : "") << " <span class=\"small\">"
          << e(fix.standardsFile) << "</span></li>";
    if (p.moreFixes > 0) out << "<li class=\"small\">&hellip; and " << p.moreFixes << " more</li>";
    out << "</ul>";
  }
  out << "</td><td class=\"" << state << "\">";
  if (p.fixed)
    out << "fixed" << (p.fixedWith.empty() ? "" : " with " + e(p.fixedWith));
  else if (p.ignored())
    out << "ignored by " << e(p.ignoredBy);
  else
    out << "remaining";
  out << "</td></tr>\n";
}

void writeDrawing(std::ostringstream& out, const DrawingReport& d, std::size_t index) {
  out << "<h2 id=\"drawing-" << index << "\">" << e(d.path) << "</h2>\n";
  if (d.failed()) {
    out << "<p class=\"error\">Not checked: " << e(d.error) << "</p>\n";
    return;
  }
  out << "<p class=\"small\">Standards: ";
  if (d.standards.empty()) out << "none";
  for (std::size_t i = 0; i < d.standards.size(); ++i) out << (i ? ", " : "") << e(d.standards[i]);
  out << "</p>\n";
  for (const std::string& missing : d.missingStandards)
    out << "<p class=\"error\">Missing standards file: " << e(missing) << "</p>\n";
  if (!d.backup.empty()) out << "<p class=\"small\">Original kept as " << e(d.backup) << "</p>\n";
  if (!d.notFixed.empty()) out << "<p class=\"error\">Not fixed: " << e(d.notFixed) << "</p>\n";
  if (d.problems.empty()) {
    out << "<p class=\"fixed\">No problems.</p>\n";
    return;
  }
  out << "<table class=\"problems\">\n<tr><th>Plug-in</th><th>Object</th><th>Problem</th>"
         "<th>Current &rarr; standard</th><th>Fixes</th><th>State</th></tr>\n";
  for (const ReportProblem& p : d.problems) writeProblem(out, p);
  out << "</table>\n";
}

}  // namespace

std::string HtmlReport::write(const CheckReport& report) {
  std::ostringstream out;
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      << "<title>Drawing standards report</title>\n<style>" << kStyle << "</style>\n</head>\n"
      << "<body>\n<h1>Drawing standards report</h1>\n<p class=\"small\">stcheck "
      << e(report.toolVersion) << "</p>\n";
  writeSummary(out, report);
  for (std::size_t i = 0; i < report.drawings.size(); ++i) writeDrawing(out, report.drawings[i], i);
  out << "</body>\n</html>\n";
  return out.str();
}

}  // namespace stcheck
