#include "SarifReport.h"

#include <map>
#include <nlohmann/json.hpp>

namespace stcheck {

namespace {

using ordered = nlohmann::ordered_json;

ordered location(const DrawingReport& d, const ReportProblem* p) {
  ordered loc;
  loc["physicalLocation"]["artifactLocation"]["uri"] = d.path;
  if (p) {
    ordered logical;
    logical["name"] = p->objectName;
    logical["fullyQualifiedName"] = p->objectName + " [" + p->handle + "]";
    logical["kind"] = "object";
    loc["logicalLocations"] = ordered::array({logical});
  }
  return loc;
}

ordered result(const DrawingReport& d, const ReportProblem& p, int ruleIndex) {
  ordered r;
  r["ruleId"] = p.plugin;
  r["ruleIndex"] = ruleIndex;
  if (p.fixed) {
    r["kind"] = "pass";
    r["level"] = "none";
  } else {
    r["kind"] = "fail";
    r["level"] = "error";
  }
  std::string message = p.shownName() + ": " + p.title;
  if (!p.description.empty()) message += ". " + p.description;
  r["message"]["text"] = message;
  r["locations"] = ordered::array({location(d, &p)});
  if (p.ignored()) {
    r["suppressions"] = ordered::array({{{"kind", "inSource"},
                                         {"status", "accepted"},
                                         {"justification", "ignored by " + p.ignoredBy}}});
  }
  ordered props;
  props["handle"] = p.handle;
  props["reason"] = p.reason;
  props["fixed"] = p.fixed;
  if (!p.fixedWith.empty()) props["fixedWith"] = p.fixedWith;
  props["properties"] = ordered::array();
  for (const ReportProperty& prop : p.properties)
    props["properties"].push_back(
        {{"name", prop.name}, {"current", prop.current}, {"standard", prop.standard}});
  props["fixes"] = ordered::array();
  for (const ReportFix& fix : p.fixes)
    props["fixes"].push_back({{"name", fix.name},
                              {"standardsFile", fix.standardsFile},
                              {"recommended", fix.recommended}});
  props["moreFixes"] = p.moreFixes;
  r["properties"] = props;
  return r;
}

}  // namespace

std::string SarifReport::write(const CheckReport& report) {
  // Rules: every plug-in that took part or reported, in first-seen order.
  ordered rules = ordered::array();
  std::map<std::string, int> ruleIndex;
  auto addRule = [&](const std::string& cls, const std::string& name) {
    if (ruleIndex.count(cls)) return;
    ruleIndex[cls] = static_cast<int>(rules.size());
    ordered rule;
    rule["id"] = cls;
    rule["name"] = cls;
    rule["shortDescription"]["text"] = name.empty() ? cls : name;
    rule["defaultConfiguration"]["level"] = "error";
    rules.push_back(rule);
  };
  for (const DrawingReport& d : report.drawings) {
    for (const ReportPlugin& p : d.plugins) addRule(p.className, p.name);
    for (const ReportProblem& p : d.problems) addRule(p.plugin, p.pluginName);
  }

  ordered results = ordered::array();
  ordered notifications = ordered::array();
  bool allRead = true;
  // A drawing the run could not check, or could not write back.
  auto fault = [&](const DrawingReport& d, const std::string& text) {
    allRead = false;
    ordered n;
    n["level"] = "error";
    n["message"]["text"] = text;
    n["locations"] = ordered::array({location(d, nullptr)});
    notifications.push_back(n);
  };
  for (const DrawingReport& d : report.drawings) {
    if (d.failed()) {
      fault(d, "not checked: " + d.error);
      continue;
    }
    for (const ReportProblem& p : d.problems) results.push_back(result(d, p, ruleIndex[p.plugin]));
    if (!d.notFixed.empty()) fault(d, "not fixed: " + d.notFixed);
  }

  ordered run;
  run["tool"]["driver"]["name"] = "stcheck";
  run["tool"]["driver"]["version"] = report.toolVersion;
  run["tool"]["driver"]["rules"] = rules;
  ordered invocation;
  invocation["executionSuccessful"] = allRead;
  if (!notifications.empty()) invocation["toolExecutionNotifications"] = notifications;
  run["invocations"] = ordered::array({invocation});
  run["results"] = results;

  ordered sarif;
  sarif["$schema"] = "https://json.schemastore.org/sarif-2.1.0.json";
  sarif["version"] = "2.1.0";
  sarif["runs"] = ordered::array({run});
  return sarif.dump(2) + "\n";
}

}  // namespace stcheck
