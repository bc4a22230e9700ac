#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "OdVariant.h"

// The host's configuration tree: named keys holding subkeys and named, typed values,
// persisted as one JSON file.
//
// Where the file lives: the environment variable STAUDIT_CONFIG (a file path) when set,
// else $XDG_CONFIG_HOME/standards-audit/config.json, else ~/.config/standards-audit/config.json
// (see defaultPath).
//
// File layout: {"format": 1, "root": KEY} where KEY is {"keys": {name: KEY, ...},
// "values": {name: {TYPE: value}, ...}} and TYPE is one of "string", "bool", "int8", "int16",
// "int32", "int64", "double". Keys and values keep the order in which they were created, and
// enumerations give them in that order. Names are UTF-8 and compared exactly (case matters).
//
// Every change is written through at once (inside a Batch: when it closes), atomically: the new
// content goes to a temporary file in the same folder, is flushed to disk and then renamed over the
// old file, so a reader (or a crash) sees either the old file or the new one, never a mix. A save
// that fails leaves the old file as it was, removes its temporary file and prints one warning on
// stderr naming the file and the reason (repeated only when the reason changes).
//
// Loading a file that is not valid JSON, not of the layout above, or over one of the limits
// below (kMaxKeyDepth, kMaxFileBytes) renames it aside to "<file>.corrupt-<UTC timestamp>" with
// one warning on stderr naming the file and the problem, and starts from a fresh tree. A fresh tree
// (also when the file does not exist) holds the empty key "cmddata", where modules keep their
// settings; it is written at the first change.
//
// A detached tree (openDetached) is loaded from its file the same way, corrupt file included,
// but keeps every change in memory: it never writes, creates or replaces its file. For runs
// that must see the user's configuration without changing it.
//
// Paths are lists of key names from the root. Used from one thread at a time.
class HostConfigTree {
 public:
  using Path = std::vector<std::string>;
  using Json = nlohmann::ordered_json;

  // What the reader accepts, far above any real configuration (a few levels, a few kilobytes):
  // a damaged or hostile file past these costs neither minutes nor gigabytes at every start.
  // Key levels count keys within keys below the root ("cmddata" is level 1).
  static constexpr int kMaxKeyDepth = 64;
  static constexpr std::size_t kMaxFileBytes = std::size_t{16} << 20;  // 16 MB

  // Why bytes are not a configuration document; what() is one lower-case line without the
  // file's name (the caller knows it).
  class FormatError : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  // Parses the bytes of a configuration file into its document: valid JSON of the layout
  // above, within the limits. Depth is checked while parsing, so a deep document is never
  // built, and the work is linear in the size of the bytes. Throws FormatError for anything
  // else; does no file I/O.
  static Json parse(std::string_view bytes);

  // Loads (or starts) the tree kept in `file`. Never throws for a bad or unreadable file: it
  // warns and starts fresh as described above.
  static std::shared_ptr<HostConfigTree> open(const std::filesystem::path& file);
  // Loads the tree kept in `file` as open() does (a corrupt file is still set aside with its
  // warning), detached: changes stay in memory and the file is never written.
  static std::shared_ptr<HostConfigTree> openDetached(const std::filesystem::path& file);
  // The file path chosen from the environment (see above); empty when neither STAUDIT_CONFIG,
  // XDG_CONFIG_HOME nor a home folder is known.
  static std::filesystem::path defaultPath();

  const std::filesystem::path& file() const noexcept { return file_; }

  // True when the key at `path` exists (the root always does).
  bool hasKey(const Path& path) const;
  // Creates the key `name` under `path` when missing; false when `path` does not exist or the
  // change could not be saved (the key then stays in memory for this run).
  bool createKey(const Path& path, const std::string& name);
  // Removes the key `name` under `path` with everything below it; false when there was none.
  bool deleteKey(const Path& path, const std::string& name);
  // Names of the subkeys, or of the values, of the key at `path` in creation order; empty for
  // a missing key.
  std::vector<std::string> subkeyNames(const Path& path) const;
  std::vector<std::string> valueNames(const Path& path) const;

  // The value, with the type it was written with; nullopt when the key or the value is
  // missing.
  std::optional<OdVariant> getValue(const Path& path, const std::string& name) const;
  // Writes a value of type string, bool or an integer or floating type; false (and nothing
  // written) for another type (void, byte text, object) or a missing key, or when the change
  // could not be saved (it then stays in memory for this run).
  bool setValue(const Path& path, const std::string& name, const OdVariant& value);
  bool deleteValue(const Path& path, const std::string& name);

  // Writes the tree to its file now; false with a warning when that fails. A detached tree
  // writes nothing and returns true.
  bool save();
  // Why the last save failed (what its warning said after the file name); empty when it
  // succeeded or none was made. Lets a command whose changes went through a Batch tell
  // whether they reached the file.
  const std::string& lastSaveError() const noexcept { return lastSaveError_; }

  // While a batch is open, changes stay in memory and the setters report success; when the
  // outermost batch closes, the tree is written once if anything changed. For runs of
  // changes such as a module registering its settings, which would otherwise write and
  // flush the file once per value. The tree must outlive the batch.
  class Batch {
   public:
    explicit Batch(HostConfigTree& tree) noexcept : tree_(tree) { ++tree_.batchDepth_; }
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

   private:
    HostConfigTree& tree_;
  };

  // The whole document (for tests and diagnostics).
  const Json& document() const noexcept { return doc_; }

  explicit HostConfigTree(std::filesystem::path file);

 private:
  // Saves a change now, or notes it for the end of the open batch.
  bool saveChange();
  static Json freshDocument();
  void load();
  // The key object at `path`, or null.
  const Json* findKey(const Path& path) const;
  Json* findKey(const Path& path);

  std::filesystem::path file_;
  Json doc_;
  std::string lastSaveError_;
  int batchDepth_ = 0;
  bool unsaved_ = false;  // changed while a batch was open
  bool detached_ = false;
};
