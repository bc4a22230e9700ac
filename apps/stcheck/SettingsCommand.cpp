#include "SettingsCommand.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "ModuleHost.h"
#include "OdError.h"
#include "StAppServices.h"
#include "StSettingsStorage.h"

namespace stcheck {

namespace {

const std::pair<const char*, unsigned> kCommands[] = {
    {"save", st::kStCheckOnSave},          {"saveas", st::kStCheckOnSaveAs},
    {"import", st::kStCheckOnImport},      {"plot", st::kStCheckOnPlot},
    {"transmit", st::kStCheckOnETransmit},
};

std::string commandList(unsigned bits) {
  std::string out;
  for (const auto& [name, bit] : kCommands)
    if (bits & bit) out += (out.empty() ? "" : ",") + std::string(name);
  return out.empty() ? "none" : out;
}

// Reads a list such as "save,plot"; false for a word that is no command.
bool parseCommands(const std::string& text, unsigned& bits) {
  bits = 0;
  if (text == "none" || text.empty()) return true;
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t comma = text.find(',', start);
    std::string word =
        text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
    bool found = false;
    for (const auto& [name, bit] : kCommands)
      if (word == name) bits |= bit, found = true;
    if (!found) return false;
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return true;
}

bool parseBool(const std::string& text, bool& value) {
  if (text == "true" || text == "on" || text == "yes" || text == "1") return value = true, true;
  if (text == "false" || text == "off" || text == "no" || text == "0") return value = false, true;
  return false;
}

int runSettings(const std::vector<std::string>& assignments) {
  try {
    ModuleHost module(ModuleHost::Config::kUser);
    st::StSettingsStorage* settings = ::stSettingsStorage();
    for (const std::string& a : assignments) {
      std::size_t eq = a.find('=');
      std::string name = a.substr(0, eq);
      std::string value = eq == std::string::npos ? std::string() : a.substr(eq + 1);
      bool flag = false;
      unsigned bits = 0;
      if (eq == std::string::npos) {
        std::fprintf(stderr, "stcheck: settings: expected NAME=VALUE, got \"%s\"\n", a.c_str());
        return 2;
      } else if (name == "autoFixProperties" && parseBool(value, flag)) {
        settings->setAutoFixProperties(flag);
      } else if (name == "showIgnoredProblems" && parseBool(value, flag)) {
        settings->setShowIgnoredProblems(flag);
      } else if (name == "preferredFile") {
        settings->setPreferredFile(OdString::fromUtf8(value));
      } else if (name == "autoFixCommands" && parseCommands(value, bits)) {
        // Bits of commands this tool does not name are kept as they are.
        unsigned known = 0;
        for (const auto& entry : kCommands) known |= entry.second;
        settings->setAutoFixCommands((settings->getAutoFixCommands() & ~known) | bits);
      } else {
        std::fprintf(stderr, "stcheck: settings: cannot set %s to \"%s\"\n", name.c_str(),
                     value.c_str());
        return 2;
      }
    }
    std::printf("autoFixProperties=%s\n", settings->getAutoFixProperties() ? "true" : "false");
    std::printf("showIgnoredProblems=%s\n", settings->getShowIgnoredProblems() ? "true" : "false");
    std::printf("preferredFile=%s\n", settings->getPreferredFile().toUtf8().c_str());
    std::printf("autoFixCommands=%s\n", commandList(settings->getAutoFixCommands()).c_str());
    return 0;
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", e.description().toUtf8().c_str());
    return 2;
  }
}

}  // namespace

void SettingsCommand::add(CLI::App& app, int& exitCode) {
  auto assignments = std::make_shared<std::vector<std::string>>();
  CLI::App* cmd = app.add_subcommand("settings", "Show or change the standards settings");
  cmd->add_option("NAME=VALUE", *assignments,
                  "autoFixProperties, showIgnoredProblems (true/false), preferredFile (path), "
                  "autoFixCommands (save,saveas,import,plot,transmit or none)");
  cmd->callback([assignments, &exitCode] { exitCode = runSettings(*assignments); });
}

}  // namespace stcheck
