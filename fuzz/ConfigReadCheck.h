#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "HostConfigTree.h"

// What must hold for any bytes handed to the configuration reader (HostConfigTree::parse),
// checked in one place so that the fuzzer and the regression test over its findings test the
// same thing:
//  - the bytes are either accepted or refused with HostConfigTree::FormatError, whose message
//    is one line;
//  - bytes that are not JSON at all are refused;
//  - an accepted document is within the limits, is what the plain JSON parser reads from the
//    same bytes, and reads back the same after being written the way the tree saves it.
//
// check() returns an empty string when all of this holds, else a lower-case description of
// the first fault. Exceptions other than FormatError are not caught: they are faults
// themselves. Header-only so the regression test can use it without linking the fuzzer.
class ConfigReadCheck {
 public:
  using Json = HostConfigTree::Json;

  static std::string check(std::string_view bytes) {
    Json doc;
    try {
      doc = HostConfigTree::parse(bytes);
    } catch (const HostConfigTree::FormatError& e) {
      const std::string message = e.what();
      if (message.empty() || message.find('\n') != std::string::npos)
        return "refusal is not one line: \"" + message + "\"";
      return {};
    }
    if (bytes.size() > HostConfigTree::kMaxFileBytes) return "accepted an oversized file";
    if (!Json::accept(bytes)) return "accepted bytes that are not JSON";
    if (Json::parse(bytes) != doc) return "the document differs from the plain parser's";
    int depth = keyDepth(doc["root"]);
    if (depth > HostConfigTree::kMaxKeyDepth)
      return "accepted keys nested " + std::to_string(depth) + " levels deep";
    Json reread;
    try {
      reread = HostConfigTree::parse(doc.dump(2) + "\n");
    } catch (const HostConfigTree::FormatError& e) {
      return "the saved form of an accepted document is refused: " + std::string(e.what());
    }
    if (reread != doc) return "the saved form of an accepted document reads back differently";
    return {};
  }

 private:
  // Levels of keys below `key` (0 for a key without subkeys).
  static int keyDepth(const Json& key) {
    int deepest = 0;
    for (const auto& [name, sub] : key["keys"].items())
      deepest = std::max(deepest, 1 + keyDepth(sub));
    return deepest;
  }
};
