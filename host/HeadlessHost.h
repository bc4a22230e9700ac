#pragma once

#include <cstdio>
#include <filesystem>

#include "HeadlessFront.h"
#include "HostApplication.h"

// A host application with the headless front: what command-line tools and tests run modules
// in. Open drawings, load modules, run commands and command scripts; message boxes take
// scripted answers; everything printed is collected (output()).
//
// Besides the host's built-in commands it has ANSWER (group "HEADLESS"), which queues the
// next word as an answer for a later box: "ok", "cancel", "yes", "no", "retry" or a task
// dialog's button number. So a script can say
//     ANSWER cancel
//     CHECKSTANDARDS
//
// Like HostApplication, one at a time per process.
class HeadlessHost {
 public:
  struct Options {
    std::filesystem::path configFile;  // empty for the default place (HostConfigTree)
    std::FILE* echo = stdout;          // where output is printed as it comes; null for none
    bool detachedConfig = false;       // see HostApplication::Options
  };

  HeadlessHost() : HeadlessHost(Options{}) {}
  explicit HeadlessHost(const Options& options);
  ~HeadlessHost();
  HeadlessHost(const HeadlessHost&) = delete;
  HeadlessHost& operator=(const HeadlessHost&) = delete;

  HostApplication& app() noexcept { return app_; }
  HeadlessFront& front() noexcept { return front_; }

  // Opens a drawing as a document and makes it current; throws OdError when it cannot be
  // read (see HostApDocManager::openDocument).
  HostDocument* openDrawing(const std::filesystem::path& file);
  bool makeCurrent(HostDocument* doc) { return app_.documents().setCurDocument(doc); }
  // False when the document is not open or closing was vetoed.
  bool closeDrawing(HostDocument* doc) { return app_.documents().closeDocument(doc); }
  HostDocument* currentDocument() { return app_.documents().curDocument(); }

  // Loads a module (see HostApplication::loadModule); throws OdError.
  OdRxModulePtr loadModule(const OdString& name) { return app_.loadModule(name); }

  // Runs a command by name now (see HostCommandLine::run).
  HostCommandResult runCommand(const OdString& name) { return app_.commandLine().run(name); }
  // Submits command-line text, as typed ("CHECKSTANDARDS " runs it).
  void submit(const OdString& text) { app_.sendCommand(text); }
  // Runs a command script: a text file (UTF-8) submitted line by line as command-line text;
  // lines whose first non-blank character is ';' are comments. False, with a line on the
  // command line, when the file cannot be read. Words left without a command to take them
  // at the end are dropped with a note.
  bool runScript(const std::filesystem::path& file);

  void queueAnswer(int answer) { front_.queueAnswer(answer); }
  const std::string& output() const noexcept { return front_.output(); }

  // The running headless host, or null.
  static HeadlessHost* current() noexcept;

 private:
  HeadlessFront front_;
  HostApplication app_;
};
