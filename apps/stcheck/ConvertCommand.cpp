#include "ConvertCommand.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdError.h"
#include "TerminalText.h"

namespace stcheck {

namespace {

struct ConvertOptions {
  std::string input;
  std::string output;
  bool binary = false;
  bool ascii = false;
};

int runConvert(const ConvertOptions& options) {
  try {
    auto doc = DxfReader::readFile(options.input);
    std::optional<DxfFormat> format;
    if (options.binary) format = DxfFormat::kBinary;
    if (options.ascii) format = DxfFormat::kAscii;
    DxfWriter(*doc, format).save(options.output);
    return 0;
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", terminalSafe(e.what()).c_str());
    return 2;
  }
}

}  // namespace

void ConvertCommand::add(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App* convert = app.add_subcommand(
      "convert", "Read a drawing and write it again, unchanged or as ASCII or binary DXF");
  convert->add_option("IN", options->input, "Drawing to read (DXF, ASCII or binary)")->required();
  convert->add_option("OUT", options->output, "File to write")->required();
  CLI::Option* binary = convert->add_flag("--binary", options->binary, "Write binary DXF");
  CLI::Option* ascii = convert->add_flag("--ascii", options->ascii, "Write ASCII DXF");
  binary->excludes(ascii);
  convert->callback([options, &exitCode] { exitCode = runConvert(*options); });
}

}  // namespace stcheck
