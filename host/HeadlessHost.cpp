#include "HeadlessHost.h"

#include <fstream>
#include <string>

#include "HostPaths.h"
#include "OdError.h"

namespace {
HeadlessHost* g_current = nullptr;

class AnswerCommand : public UICmdProcess {
 public:
  bool execute() override {
    HeadlessHost* host = HeadlessHost::current();
    if (!host) return false;
    OdString word;
    if (!host->app().getString(L"Answer for the next box: ", word)) return false;
    int answer = 0;
    if (!hostParseAnswer(word, answer)) {
      host->app().cmdPrintf(
          L"\"%ls\" is no answer; give ok, cancel, yes, no, retry or a button number\n",
          word.c_str());
      return false;
    }
    host->queueAnswer(answer);
    return true;
  }
};

UICmdProcess* makeAnswerCommand() {
  return new AnswerCommand();
}
}  // namespace

HeadlessHost::HeadlessHost(const Options& options)
    : front_(options.echo),
      app_(front_, HostApplication::Options{options.configFile, options.detachedConfig}) {
  app_.commands().add(L"ANSWER", L"HEADLESS", kHostCmdTransparent, &makeAnswerCommand);
  g_current = this;
}

HeadlessHost::~HeadlessHost() {
  g_current = nullptr;
}

HeadlessHost* HeadlessHost::current() noexcept {
  return g_current;
}

HostDocument* HeadlessHost::openDrawing(const std::filesystem::path& file) {
  return app_.documents().openDocument(OdString::fromUtf8(file.string()));
}

bool HeadlessHost::runScript(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    app_.cmdPrintf(L"cannot read script %s\n", file.string().c_str());
    return false;
  }
  std::string line;
  while (std::getline(in, line)) {
    std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos || line[first] == ';') continue;
    app_.sendCommand(OdString::fromUtf8(line + "\n"));
  }
  OdString rest = app_.commandLine().pendingInput();
  rest.trimLeft().trimRight();
  if (!rest.isEmpty()) {
    app_.cmdPrintf(L"script %s left unused input: %ls\n", file.string().c_str(), rest.c_str());
    app_.commandLine().clearPendingInput();
  }
  return true;
}
