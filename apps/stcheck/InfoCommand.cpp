#include "InfoCommand.h"

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "OdDbDatabase.h"
#include "OdDbSymbolTable.h"
#include "OdError.h"
#include "TerminalText.h"

namespace stcheck {

namespace {

struct InfoOptions {
  std::string file;
  std::string format = "text";
};

std::vector<std::string> recordNames(const OdDbObjectId& tableId) {
  std::vector<std::string> names;
  OdDbSymbolTablePtr table = tableId.safeOpenObject();
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step())
    names.push_back(it->getRecord()->getName().toUtf8());
  return names;
}

nlohmann::ordered_json describe(OdDbDatabase& db) {
  nlohmann::ordered_json info;
  info["version"] = db.versionString().toUtf8();
  info["binary"] = db.isBinary();
  info["encoding"] = db.encoding().toUtf8();
  info["layers"] = recordNames(db.getLayerTableId());
  info["linetypes"] = recordNames(db.getLinetypeTableId());
  info["textStyles"] = recordNames(db.getTextStyleTableId());
  info["dimStyles"] = recordNames(db.getDimStyleTableId());
  info["blocks"] = recordNames(db.getBlockTableId());
  info["entities"] = db.countEntities();
  info["objects"] = db.countObjects();
  return info;
}

void printText(const nlohmann::ordered_json& info) {
  std::printf("version:    %s\n", info["version"].get<std::string>().c_str());
  std::printf("format:     %s\n", info["binary"].get<bool>() ? "binary" : "ASCII");
  std::printf("encoding:   %s\n", info["encoding"].get<std::string>().c_str());
  for (const char* key : {"layers", "linetypes", "textStyles", "dimStyles", "blocks"}) {
    const auto& names = info[key];
    std::printf("%-11s %zu\n", (std::string(key) + ":").c_str(), names.size());
    for (const auto& name : names) std::printf("  %s\n", name.get<std::string>().c_str());
  }
  std::printf("entities:   %zu\n", info["entities"].get<std::size_t>());
  std::printf("objects:    %zu\n", info["objects"].get<std::size_t>());
}

int runInfo(const InfoOptions& options) {
  try {
    OdDbDatabasePtr db = OdDbDatabase::readFile(options.file);
    nlohmann::ordered_json info = describe(*db);
    if (options.format == "json")
      std::printf("%s\n",
                  info.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
    else
      printText(info);
    return 0;
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", terminalSafe(e.what()).c_str());
    return 2;
  }
}

}  // namespace

void InfoCommand::add(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* info = app.add_subcommand(
      "info", "Show a drawing's release, encoding, tables, and entity and object counts");
  info->add_option("FILE", options->file, "Drawing to read (DXF, ASCII or binary)")->required();
  info->add_option("--format", options->format, "Output format")
      ->check(CLI::IsMember({"text", "json"}));
  info->callback([options, &exitCode] { exitCode = runInfo(*options); });
}

}  // namespace stcheck
