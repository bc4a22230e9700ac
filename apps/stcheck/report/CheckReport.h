#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace stcheck {

// What one run of `stcheck check` found, independent of how it is shown. Every text is UTF-8.
// The writers (TextReport, JsonReport, HtmlReport, JunitReport, SarifReport) only read it;
// JsonReport also reads it back, which is how worker processes hand their drawings to the
// process that writes the report.

// A property in which the object differs from the standard (the recommended fix's values).
struct ReportProperty {
  std::string name;
  std::string current;
  std::string standard;
};

// One candidate fix: a standard object of a standards file.
struct ReportFix {
  std::string name;
  std::string standardsFile;
  bool recommended = false;
};

// One problem a plug-in reported about one named object of the drawing.
struct ReportProblem {
  std::string plugin;       // the plug-in's class name ("StDWSLayerPlugin")
  std::string pluginName;   // the plug-in's display name
  std::string handle;       // the object's handle, hexadecimal
  std::string objectName;   // as the drawing named it when checked
  std::string title;        // the problem's name
  std::string description;  // what is wrong
  std::string reason;       // why, or what the fixes are ("Replace with:" of the dialog)
  bool fixed = false;       // fixed automatically in this run
  std::string fixedWith;    // the fix used when fixed
  std::string ignoredBy;    // the user who marked the problem ignored; empty when not ignored
  std::vector<ReportProperty> properties;
  // The best candidate fixes, at most kFixesListed, the recommended one first and the rest
  // closest name first; moreFixes counts the candidates left out.
  std::vector<ReportFix> fixes;
  std::size_t moreFixes = 0;
  std::string renamedTo;  // set when a fix of this run put a record of another name in its place

  static constexpr std::size_t kFixesListed = 20;

  bool ignored() const { return !ignoredBy.empty(); }
  // The object's name as reports show it: "old -> new" once a fix renamed it.
  std::string shownName() const {
    return renamedTo.empty() ? objectName : objectName + " -> " + renamedTo;
  }
  // Neither fixed nor deliberately ignored: what makes a check fail.
  bool remains() const { return !fixed && !ignored(); }
};

// The four counts of the check, as the module keeps them.
struct ReportCounts {
  std::uint32_t found = 0;
  std::uint32_t fixedAutomatically = 0;
  std::uint32_t fixedManually = 0;
  std::uint32_t ignored = 0;
};

// A plug-in that took part in the check of a drawing.
struct ReportPlugin {
  std::string className;
  std::string name;
};

struct DrawingReport {
  std::string path;
  // The standards files the drawing was checked against, in order.
  std::vector<std::string> standards;
  // Standards files named but not found; a drawing with one is not checked.
  std::vector<std::string> missingStandards;
  std::vector<ReportPlugin> plugins;
  ReportCounts counts;
  std::vector<ReportProblem> problems;
  // Why the drawing could not be read or checked; empty when it was checked.
  std::string error;
  // Set when --fix wrote the drawing back: where the original was kept.
  std::string backup;
  // Why --fix did not write the drawing although it was checked (it is read-only, the disk is
  // full, it changed on disk meanwhile); its problems are then reported as found, unfixed.
  std::string notFixed;

  bool failed() const { return !error.empty(); }
  std::size_t remaining() const;
};

struct CheckReport {
  std::string toolVersion;
  std::vector<DrawingReport> drawings;

  // The exit status a run with this report ends with: 2 when some drawing could not be read
  // or checked, or --fix could not write it, else 1 when some problem remains, else 0.
  int exitCode() const;
};

}  // namespace stcheck
