#include "JsonReport.h"

#include <stdexcept>

namespace stcheck {

namespace {

using ordered = nlohmann::ordered_json;

ordered problemJson(const ReportProblem& p) {
  ordered j;
  j["plugin"] = p.plugin;
  j["pluginName"] = p.pluginName;
  j["handle"] = p.handle;
  j["objectName"] = p.objectName;
  if (!p.renamedTo.empty()) j["renamedTo"] = p.renamedTo;
  j["title"] = p.title;
  j["description"] = p.description;
  j["reason"] = p.reason;
  j["fixed"] = p.fixed;
  j["fixedWith"] = p.fixedWith.empty() ? ordered() : ordered(p.fixedWith);
  j["ignoredBy"] = p.ignoredBy.empty() ? ordered() : ordered(p.ignoredBy);
  j["properties"] = ordered::array();
  for (const ReportProperty& prop : p.properties)
    j["properties"].push_back(
        {{"name", prop.name}, {"current", prop.current}, {"standard", prop.standard}});
  j["fixes"] = ordered::array();
  for (const ReportFix& fix : p.fixes)
    j["fixes"].push_back({{"name", fix.name},
                          {"standardsFile", fix.standardsFile},
                          {"recommended", fix.recommended}});
  j["moreFixes"] = p.moreFixes;
  return j;
}

ordered drawingJson(const DrawingReport& d) {
  ordered j;
  j["path"] = d.path;
  j["standards"] = d.standards;
  j["missingStandards"] = d.missingStandards;
  j["plugins"] = ordered::array();
  for (const ReportPlugin& p : d.plugins)
    j["plugins"].push_back({{"className", p.className}, {"name", p.name}});
  j["counts"] = {{"found", d.counts.found},
                 {"fixedAutomatically", d.counts.fixedAutomatically},
                 {"fixedManually", d.counts.fixedManually},
                 {"ignored", d.counts.ignored}};
  j["remaining"] = d.remaining();
  j["error"] = d.error.empty() ? ordered() : ordered(d.error);
  j["backup"] = d.backup.empty() ? ordered() : ordered(d.backup);
  j["notFixed"] = d.notFixed.empty() ? ordered() : ordered(d.notFixed);
  j["problems"] = ordered::array();
  for (const ReportProblem& p : d.problems) j["problems"].push_back(problemJson(p));
  return j;
}

// Typed reads that name the field that is wrong.
const nlohmann::json& field(const nlohmann::json& j, const char* name) {
  if (!j.is_object() || !j.contains(name))
    throw std::runtime_error(std::string("report: missing field \"") + name + "\"");
  return j.at(name);
}

std::string text(const nlohmann::json& j, const char* name) {
  if (!j.contains(name) || j.at(name).is_null()) return std::string();
  const nlohmann::json& v = j.at(name);
  if (!v.is_string())
    throw std::runtime_error(std::string("report: field \"") + name + "\" is not a string");
  return v.get<std::string>();
}

bool flag(const nlohmann::json& j, const char* name) {
  const nlohmann::json& v = field(j, name);
  if (!v.is_boolean())
    throw std::runtime_error(std::string("report: field \"") + name + "\" is not a boolean");
  return v.get<bool>();
}

std::uint32_t count(const nlohmann::json& j, const char* name) {
  const nlohmann::json& v = field(j, name);
  if (!v.is_number_unsigned())
    throw std::runtime_error(std::string("report: field \"") + name + "\" is not a count");
  return v.get<std::uint32_t>();
}

const nlohmann::json& list(const nlohmann::json& j, const char* name) {
  static const nlohmann::json empty = nlohmann::json::array();
  if (!j.contains(name)) return empty;
  const nlohmann::json& v = j.at(name);
  if (!v.is_array())
    throw std::runtime_error(std::string("report: field \"") + name + "\" is not a list");
  return v;
}

std::vector<std::string> texts(const nlohmann::json& j, const char* name) {
  std::vector<std::string> out;
  for (const nlohmann::json& v : list(j, name)) {
    if (!v.is_string())
      throw std::runtime_error(std::string("report: \"") + name + "\" holds a non-string");
    out.push_back(v.get<std::string>());
  }
  return out;
}

ReportProblem problemFromJson(const nlohmann::json& j) {
  ReportProblem p;
  p.plugin = text(j, "plugin");
  p.pluginName = text(j, "pluginName");
  p.handle = text(j, "handle");
  p.objectName = text(j, "objectName");
  p.renamedTo = text(j, "renamedTo");
  p.title = text(j, "title");
  p.description = text(j, "description");
  p.reason = text(j, "reason");
  p.fixed = flag(j, "fixed");
  p.fixedWith = text(j, "fixedWith");
  p.ignoredBy = text(j, "ignoredBy");
  for (const nlohmann::json& prop : list(j, "properties"))
    p.properties.push_back({text(prop, "name"), text(prop, "current"), text(prop, "standard")});
  for (const nlohmann::json& fix : list(j, "fixes"))
    p.fixes.push_back({text(fix, "name"), text(fix, "standardsFile"), flag(fix, "recommended")});
  // Absent from reports of earlier versions, which listed every fix.
  if (j.contains("moreFixes")) p.moreFixes = count(j, "moreFixes");
  return p;
}

}  // namespace

nlohmann::ordered_json JsonReport::toJson(const CheckReport& report) {
  ordered j;
  j["schemaVersion"] = kSchemaVersion;
  j["tool"] = {{"name", "stcheck"}, {"version", report.toolVersion}};
  j["drawings"] = ordered::array();
  for (const DrawingReport& d : report.drawings) j["drawings"].push_back(drawingJson(d));
  return j;
}

std::string JsonReport::write(const CheckReport& report) {
  return toJson(report).dump(2) + "\n";
}

DrawingReport JsonReport::drawingFromJson(const nlohmann::json& j) {
  DrawingReport d;
  d.path = text(j, "path");
  d.standards = texts(j, "standards");
  d.missingStandards = texts(j, "missingStandards");
  for (const nlohmann::json& p : list(j, "plugins"))
    d.plugins.push_back({text(p, "className"), text(p, "name")});
  const nlohmann::json& counts = field(j, "counts");
  d.counts.found = count(counts, "found");
  d.counts.fixedAutomatically = count(counts, "fixedAutomatically");
  d.counts.fixedManually = count(counts, "fixedManually");
  d.counts.ignored = count(counts, "ignored");
  d.error = text(j, "error");
  d.backup = text(j, "backup");
  d.notFixed = text(j, "notFixed");
  for (const nlohmann::json& p : list(j, "problems")) d.problems.push_back(problemFromJson(p));
  return d;
}

CheckReport JsonReport::read(const std::string& document) {
  nlohmann::json j = nlohmann::json::parse(document, nullptr, false);
  if (j.is_discarded()) throw std::runtime_error("report: not a JSON document");
  const nlohmann::json& version = field(j, "schemaVersion");
  if (!version.is_number_integer() || version.get<int>() != kSchemaVersion)
    throw std::runtime_error("report: schemaVersion " + version.dump() + " is not " +
                             std::to_string(kSchemaVersion));
  CheckReport report;
  if (j.contains("tool")) report.toolVersion = text(j.at("tool"), "version");
  for (const nlohmann::json& d : list(j, "drawings")) report.drawings.push_back(drawingFromJson(d));
  return report;
}

}  // namespace stcheck
