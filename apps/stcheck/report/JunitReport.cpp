#include "JunitReport.h"

#include <set>
#include <sstream>

#include "XmlText.h"

namespace stcheck {

namespace {

std::string e(const std::string& s) {
  return xmlEscape(s);
}

struct SuiteCounts {
  std::size_t tests = 0, failures = 0, errors = 0, skipped = 0;
};

SuiteCounts countSuite(const DrawingReport& d) {
  SuiteCounts c;
  if (d.failed()) {
    c.tests = c.errors = 1;
    return c;
  }
  if (!d.notFixed.empty()) ++c.tests, ++c.errors;
  std::set<std::string> reporting;
  for (const ReportProblem& p : d.problems) {
    ++c.tests;
    reporting.insert(p.plugin);
    if (p.remains()) ++c.failures;
    if (p.ignored() && !p.fixed) ++c.skipped;
  }
  for (const ReportPlugin& p : d.plugins)
    if (!reporting.count(p.className)) ++c.tests;
  return c;
}

void writeProblem(std::ostringstream& out, const DrawingReport& d, const ReportProblem& p) {
  out << "    <testcase classname=\"" << e(p.plugin) << "\" name=\"" << e(p.shownName()) << " ["
      << e(p.handle) << "]: " << e(p.title) << "\" file=\"" << e(d.path) << "\"";
  if (!p.remains() && !(p.ignored() && !p.fixed)) {
    out << ">\n      <system-out>fixed" << (p.fixedWith.empty() ? "" : " with " + e(p.fixedWith))
        << "</system-out>\n    </testcase>\n";
    return;
  }
  out << ">\n";
  if (p.ignored()) {
    out << "      <skipped message=\"ignored by " << e(p.ignoredBy) << "\"/>\n";
  } else {
    std::ostringstream body;
    body << p.description << "\n";
    if (!p.reason.empty()) body << p.reason << "\n";
    for (const ReportProperty& prop : p.properties)
      body << prop.name << ": " << prop.current << " -> " << prop.standard << "\n";
    for (const ReportFix& fix : p.fixes)
      body << "fix: " << fix.name << " (" << fix.standardsFile << ")"
           << (fix.recommended ? " recommended" : "") << "\n";
    if (p.moreFixes > 0) body << "... and " << p.moreFixes << " more fixes\n";
    out << "      <failure message=\"" << e(p.title) << "\" type=\"" << e(p.plugin) << "\">"
        << e(body.str()) << "</failure>\n";
  }
  out << "    </testcase>\n";
}

}  // namespace

std::string JunitReport::write(const CheckReport& report) {
  SuiteCounts total;
  std::vector<SuiteCounts> suites;
  for (const DrawingReport& d : report.drawings) {
    suites.push_back(countSuite(d));
    total.tests += suites.back().tests;
    total.failures += suites.back().failures;
    total.errors += suites.back().errors;
    total.skipped += suites.back().skipped;
  }
  std::ostringstream out;
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<testsuites name=\"drawing standards\" tests=\"" << total.tests << "\" failures=\""
      << total.failures << "\" errors=\"" << total.errors << "\" skipped=\"" << total.skipped
      << "\">\n";
  for (std::size_t i = 0; i < report.drawings.size(); ++i) {
    const DrawingReport& d = report.drawings[i];
    const SuiteCounts& c = suites[i];
    out << "  <testsuite name=\"" << e(d.path) << "\" tests=\"" << c.tests << "\" failures=\""
        << c.failures << "\" errors=\"" << c.errors << "\" skipped=\"" << c.skipped << "\">\n";
    if (d.failed()) {
      out << "    <testcase classname=\"stcheck\" name=\"read drawing\" file=\"" << e(d.path)
          << "\">\n      <error message=\"" << e(d.error) << "\"/>\n    </testcase>\n";
    } else {
      std::set<std::string> reporting;
      for (const ReportProblem& p : d.problems) {
        reporting.insert(p.plugin);
        writeProblem(out, d, p);
      }
      for (const ReportPlugin& p : d.plugins)
        if (!reporting.count(p.className))
          out << "    <testcase classname=\"" << e(p.className) << "\" name=\""
              << e(p.name.empty() ? p.className : p.name) << ": no problems\" file=\"" << e(d.path)
              << "\"/>\n";
      if (!d.notFixed.empty())
        out << "    <testcase classname=\"stcheck\" name=\"write fixed drawing\" file=\""
            << e(d.path) << "\">\n      <error message=\"" << e(d.notFixed)
            << "\"/>\n    </testcase>\n";
    }
    out << "  </testsuite>\n";
  }
  out << "</testsuites>\n";
  return out.str();
}

}  // namespace stcheck
