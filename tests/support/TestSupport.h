#pragma once

// Helpers shared by the test folders: running the built programs as a user runs them, and
// finding the shared corpus of real drawings.

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace testsupport {

struct ProcessResult {
  int exitCode = -1;   // -1 when the process did not exit normally (a crash)
  std::string output;  // standard output and standard error together
};

// Runs a shell command line and collects what it prints.
inline ProcessResult runCommand(const std::string& commandLine) {
  ProcessResult result;
  FILE* pipe = popen((commandLine + " 2>&1").c_str(), "r");
  if (!pipe) return result;
  std::array<char, 65536> buffer{};
  while (size_t n = fread(buffer.data(), 1, buffer.size(), pipe))
    result.output.append(buffer.data(), n);
  int status = pclose(pipe);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

// The whole content of a file; empty when it cannot be read.
inline std::string readBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Quotes one argument for the shell.
inline std::string shellQuote(const std::string& arg) {
  std::string quoted = "'";
  for (char c : arg) quoted += (c == '\'') ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// Runs the built stcheck with the given arguments (each quoted).
inline ProcessResult runStcheck(const std::vector<std::string>& args) {
  std::string line = shellQuote(std::string(STAUDIT_BIN_DIR) + "/stcheck");
  for (const auto& a : args) line += " " + shellQuote(a);
  return runCommand(line);
}

// Runs the built stcheck from the folder `cwd` with the configuration file `config`, as a user
// whose configuration lives there runs it. With `timeoutSeconds`, a run that would hang is
// stopped then and exits with 124, so that a test fails instead of waiting for ever.
inline ProcessResult runStcheckIn(const std::filesystem::path& cwd,
                                  const std::filesystem::path& config,
                                  const std::vector<std::string>& args, int timeoutSeconds = 0) {
  std::string line = "cd " + shellQuote(cwd.string()) +
                     " && STAUDIT_CONFIG=" + shellQuote(config.string()) + " " +
                     (timeoutSeconds ? "timeout " + std::to_string(timeoutSeconds) + " " : "") +
                     shellQuote(std::string(STAUDIT_BIN_DIR) + "/stcheck");
  for (const auto& a : args) line += " " + shellQuote(a);
  return runCommand(line);
}

// Writes the example project (the floor plan and its two standards files) into `dir` with
// the built make_examples.
inline ProcessResult makeExamples(const std::filesystem::path& dir) {
  return runCommand(shellQuote(std::string(STAUDIT_BIN_DIR) + "/make_examples") + " " +
                    shellQuote(dir.string()));
}

// Runs a python snippet with ezdxf on `file` (bound to the name `path` in the snippet).
inline ProcessResult ezdxf(const std::string& snippet, const std::filesystem::path& file) {
  std::string script = "import sys, ezdxf\npath = sys.argv[1]\n" + snippet;
  return runCommand(std::string(STAUDIT_PYTHON) + " -c " + shellQuote(script) + " " +
                    shellQuote(file.string()));
}

// The corpus folder, or an empty path when it is absent (tests then skip and say so).
inline std::filesystem::path corpusDir() {
  std::filesystem::path dir(STAUDIT_CORPUS_DIR);
  return std::filesystem::is_directory(dir) ? dir : std::filesystem::path();
}

// A user's working copy of a drawing: copied, and writable by its owner whatever the source
// allows (the corpus is read-only, and --fix refuses read-only drawings).
inline void copyWorkingCopy(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
  std::filesystem::permissions(to, std::filesystem::perms::owner_write,
                               std::filesystem::perm_options::add);
}

// Every .dxf of the corpus, sorted by name.
inline std::vector<std::filesystem::path> corpusDrawings() {
  std::vector<std::filesystem::path> files;
  auto dir = corpusDir();
  if (dir.empty()) return files;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    auto ext = entry.path().extension().string();
    for (auto& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext == ".dxf") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// A fresh temporary folder removed when the object goes.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "staudit-XXXXXX").string();
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back('\0');
    path_ = mkdtemp(buf.data());
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace testsupport
