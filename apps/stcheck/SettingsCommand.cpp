#include "SettingsCommand.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
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

std::string lowerCase(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

bool parseBool(const std::string& text, bool& value) {
  const std::string word = lowerCase(text);
  if (word == "true" || word == "on" || word == "yes" || word == "1") return value = true, true;
  if (word == "false" || word == "off" || word == "no" || word == "0") return value = false, true;
  return false;
}

const char* const kKnown = "autoFixProperties, showIgnoredProblems, preferredFile, autoFixCommands";

// The changes a command line asks for; the last assignment of a name wins.
struct Changes {
  std::optional<bool> autoFixProperties;
  std::optional<bool> showIgnoredProblems;
  std::optional<std::string> preferredFile;
  std::optional<unsigned> autoFixCommands;
  bool empty() const {
    return !autoFixProperties && !showIgnoredProblems && !preferredFile && !autoFixCommands;
  }
};

// Reads every assignment before anything is changed, so that one bad word changes nothing;
// an empty string, or the one-line reason the command line is refused.
std::string readAssignments(const std::vector<std::string>& assignments, Changes& changes) {
  for (const std::string& a : assignments) {
    const std::size_t eq = a.find('=');
    if (eq == std::string::npos) return "expected NAME=VALUE, got \"" + a + "\"";
    const std::string name = a.substr(0, eq);
    const std::string value = a.substr(eq + 1);
    bool flag = false;
    unsigned bits = 0;
    if (name == "autoFixProperties" || name == "showIgnoredProblems") {
      if (!parseBool(value, flag))
        return name + " takes true or false (yes/no, on/off, 1/0), not \"" + value + "\"";
      (name == "autoFixProperties" ? changes.autoFixProperties : changes.showIgnoredProblems) =
          flag;
    } else if (name == "preferredFile") {
      changes.preferredFile = value;
    } else if (name == "autoFixCommands") {
      if (!parseCommands(lowerCase(value), bits))
        return "autoFixCommands takes a list of save, saveas, import, plot, transmit or none, "
               "not \"" +
               value + "\"";
      changes.autoFixCommands = bits;
    } else {
      return "unknown setting " + name + " (known: " + std::string(kKnown) + ")";
    }
  }
  return {};
}

void apply(const Changes& changes, st::StSettingsStorage& settings) {
  if (changes.autoFixProperties) settings.setAutoFixProperties(*changes.autoFixProperties);
  if (changes.showIgnoredProblems) settings.setShowIgnoredProblems(*changes.showIgnoredProblems);
  if (changes.preferredFile) settings.setPreferredFile(OdString::fromUtf8(*changes.preferredFile));
  if (changes.autoFixCommands) {
    // Bits of commands this tool does not name are kept as they are.
    unsigned known = 0;
    for (const auto& entry : kCommands) known |= entry.second;
    settings.setAutoFixCommands((settings.getAutoFixCommands() & ~known) |
                                *changes.autoFixCommands);
  }
}

int runSettings(const std::vector<std::string>& assignments) {
  Changes changes;
  if (std::string problem = readAssignments(assignments, changes); !problem.empty()) {
    std::fprintf(stderr, "stcheck: settings: %s\n", problem.c_str());
    return 2;
  }
  try {
    // Listing reads the user's configuration without writing it, so it creates no file.
    ModuleHost module(changes.empty() ? ModuleHost::Config::kPrivateCopy
                                      : ModuleHost::Config::kUser);
    st::StSettingsStorage* settings = ::stSettingsStorage();
    HostConfigTree& tree = module.host().app().configTree();
    {
      HostConfigTree::Batch batch(tree);
      apply(changes, *settings);
    }
    // The tree has said which file it could not write, and why.
    if (!tree.lastSaveError().empty()) return 2;
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
                  "autoFixProperties, showIgnoredProblems (true/false, any case), preferredFile "
                  "(path), autoFixCommands (save,saveas,import,plot,transmit or none); all "
                  "are applied, or none");
  cmd->callback([assignments, &exitCode] { exitCode = runSettings(*assignments); });
}

}  // namespace stcheck
