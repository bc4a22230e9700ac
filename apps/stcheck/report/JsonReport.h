#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "CheckReport.h"

namespace stcheck {

// The machine-readable report: one JSON document, described by docs/report.schema.json.
//
// kSchemaVersion goes up by one whenever a field changes meaning or goes away; fields may be
// added without a new version, so readers ignore what they do not know.
class JsonReport {
 public:
  static constexpr int kSchemaVersion = 1;

  static nlohmann::ordered_json toJson(const CheckReport& report);
  static std::string write(const CheckReport& report);

  // Reads a report written by write(). Throws std::runtime_error naming the field when the
  // document is not such a report (another schema version, a field of the wrong type).
  static CheckReport read(const std::string& text);
  static DrawingReport drawingFromJson(const nlohmann::json& drawing);
};

}  // namespace stcheck
