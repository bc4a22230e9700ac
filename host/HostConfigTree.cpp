#include "HostConfigTree.h"

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <limits>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "OdAtomicFile.h"
#include "OdError.h"

namespace fs = std::filesystem;

namespace {

using Json = HostConfigTree::Json;

void warn(const std::string& message) {
  std::fprintf(stderr, "standards-audit: warning: %s\n", message.c_str());
}

Json emptyKey() {
  return Json{{"keys", Json::object()}, {"values", Json::object()}};
}

// The integer types a value may be stored as, with their ranges.
struct IntType {
  const char* name;
  OdVariant::Type type;
  long long min;
  long long max;
};
constexpr IntType kIntTypes[] = {
    {"int8", OdVariant::kInt8, std::numeric_limits<std::int8_t>::min(),
     std::numeric_limits<std::int8_t>::max()},
    {"int16", OdVariant::kInt16, std::numeric_limits<std::int16_t>::min(),
     std::numeric_limits<std::int16_t>::max()},
    {"int32", OdVariant::kInt32, std::numeric_limits<std::int32_t>::min(),
     std::numeric_limits<std::int32_t>::max()},
    {"int64", OdVariant::kInt64, std::numeric_limits<std::int64_t>::min(),
     std::numeric_limits<std::int64_t>::max()},
};

// The stored form of a value, or null for a type the tree does not keep.
Json encodeValue(const OdVariant& value) {
  switch (value.varType()) {
    case OdVariant::kString:
      return Json{{"string", value.getString().toUtf8()}};
    case OdVariant::kBool:
      return Json{{"bool", value.getBool()}};
    case OdVariant::kInt8:
      return Json{{"int8", value.getInt8()}};
    case OdVariant::kInt16:
      return Json{{"int16", value.getInt16()}};
    case OdVariant::kInt32:
      return Json{{"int32", value.getInt32()}};
    case OdVariant::kInt64:
      return Json{{"int64", value.getInt64()}};
    case OdVariant::kDouble:
      // JSON has no infinities or NaN; they would come back as null.
      if (!std::isfinite(value.getDouble())) return nullptr;
      return Json{{"double", value.getDouble()}};
    default:
      return nullptr;
  }
}

// The value of a stored form; nullopt when the form is not one encodeValue makes.
std::optional<OdVariant> decodeValue(const Json& stored) {
  if (!stored.is_object() || stored.size() != 1) return std::nullopt;
  auto only = stored.begin();
  const std::string& type = only.key();
  const Json& v = only.value();
  if (type == "string" && v.is_string()) return OdVariant(OdString::fromUtf8(v.get<std::string>()));
  if (type == "bool" && v.is_boolean()) return OdVariant(v.get<bool>());
  if (type == "double" && v.is_number()) return OdVariant(v.get<double>());
  for (const IntType& t : kIntTypes) {
    if (type != t.name || !v.is_number_integer()) continue;
    if (v.is_number_unsigned() && v.get<std::uint64_t>() > static_cast<std::uint64_t>(t.max))
      return std::nullopt;
    long long n = v.get<long long>();
    if (n < t.min || n > t.max) return std::nullopt;
    OdVariant out;
    switch (t.type) {
      case OdVariant::kInt8:
        out.setInt8(static_cast<std::int8_t>(n));
        break;
      case OdVariant::kInt16:
        out.setInt16(static_cast<std::int16_t>(n));
        break;
      case OdVariant::kInt32:
        out.setInt32(static_cast<std::int32_t>(n));
        break;
      default:
        out.setInt64(n);
        break;
    }
    return out;
  }
  return std::nullopt;
}

// `name` as a JSON string: quoted, with control characters escaped, so a message about it
// stays on one line whatever the file holds.
std::string quoted(const std::string& name) {
  return Json(name).dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Describes the first way `key` departs from the layout, or returns empty. `where` names
// the key for the message.
std::string checkKey(const Json& key, const std::string& where) {
  if (!key.is_object()) return where + " is not an object";
  for (const auto& [member, v] : key.items()) {
    if (member != "keys" && member != "values")
      return where + " has an unknown member " + quoted(member);
  }
  auto keys = key.find("keys");
  auto values = key.find("values");
  if (keys == key.end() || !keys->is_object()) return where + " lacks its \"keys\" object";
  if (values == key.end() || !values->is_object()) return where + " lacks its \"values\" object";
  for (const auto& [name, v] : values->items()) {
    if (!decodeValue(v)) return "value " + quoted(name) + " of " + where + " is not a typed value";
  }
  for (const auto& [name, sub] : keys->items()) {
    std::string error = checkKey(sub, "key " + quoted(name));
    if (!error.empty()) return error;
  }
  return {};
}

// The parser's message without its "[json.exception...] " prefix, on one line.
std::string parserMessage(const Json::exception& e) {
  std::string text = e.what();
  if (text.starts_with("[json.exception.")) {
    if (std::size_t end = text.find("] "); end != std::string::npos) text.erase(0, end + 2);
  }
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return text;
}

// Builds a document from the parser's events, the way the plain parser does (a repeated name
// keeps its first place and takes its last value), with two differences that bound the work
// any file can cause: a container nested deeper than `maxEnclosing` containers stops the parse
// before it is built, and names are found through a hash index, since the document's own
// object type looks names up one by one and would make a key with many entries quadratic.
class DocumentBuilder {
 public:
  using Object = Json::object_t;
  // The object type is an ordered vector of pairs; appending to it directly is what its own
  // insertion does after its linear search.
  using Entries = Object::Container;

  explicit DocumentBuilder(std::size_t maxEnclosing, std::string tooDeep)
      : maxEnclosing_(maxEnclosing), tooDeep_(std::move(tooDeep)) {}

  Json& document() { return doc_; }

  bool null() { return place(nullptr), true; }
  bool boolean(bool v) { return place(v), true; }
  bool number_integer(Json::number_integer_t v) { return place(v), true; }
  bool number_unsigned(Json::number_unsigned_t v) { return place(v), true; }
  bool number_float(Json::number_float_t v, const std::string&) { return place(v), true; }
  bool string(std::string& v) { return place(std::move(v)), true; }
  bool binary(Json::binary_t& v) { return place(Json::binary(std::move(v))), true; }
  bool start_object(std::size_t) { return open(Json::object()); }
  bool start_array(std::size_t) { return open(Json::array()); }
  bool key(std::string& name) {
    key_ = std::move(name);
    return true;
  }
  bool end_object() { return close(); }
  bool end_array() { return close(); }
  bool parse_error(std::size_t, const std::string&, const Json::exception& e) {
    throw HostConfigTree::FormatError(parserMessage(e));
  }

 private:
  struct Open {
    Json* container;
    std::unordered_map<std::string, std::size_t> index;  // names of an object, to their place
  };

  Json* place(Json&& value) {
    if (open_.empty()) {
      doc_ = std::move(value);
      return &doc_;
    }
    Open& top = open_.back();
    if (top.container->is_array()) {
      auto& items = top.container->get_ref<Json::array_t&>();
      items.push_back(std::move(value));
      return &items.back();
    }
    auto& entries = static_cast<Entries&>(top.container->get_ref<Object&>());
    auto [at, fresh] = top.index.try_emplace(key_, entries.size());
    if (fresh) {
      entries.emplace_back(std::move(key_), std::move(value));
      return &entries.back().second;
    }
    entries[at->second].second = std::move(value);
    return &entries[at->second].second;
  }
  // Containers below the one being filled are not touched until it closes, so the pointers
  // kept to them stay valid.
  bool open(Json&& container) {
    if (open_.size() > maxEnclosing_) throw HostConfigTree::FormatError(tooDeep_);
    open_.push_back({place(std::move(container)), {}});
    return true;
  }
  bool close() {
    open_.pop_back();
    return true;
  }

  std::size_t maxEnclosing_;
  std::string tooDeep_;
  Json doc_;
  std::vector<Open> open_;
  std::string key_;
};

std::string utcTimestamp() {
  std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char text[32];
  std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc);
  return text;
}

std::string systemError(int error) {
  return std::generic_category().message(error);
}

// Writes `bytes` over `file` whole or not at all (see OdAtomicFile). Returns an empty
// string, or what failed.
std::string replaceFileAtomically(const fs::path& file, const std::string& bytes) {
  std::error_code ec;
  if (file.has_parent_path()) {
    fs::create_directories(file.parent_path(), ec);
    if (ec) return "cannot create folder " + file.parent_path().string() + ": " + ec.message();
  }
  OdAtomicFile::Options options;
  options.newFileMode = 0600;  // a new settings file is the user's own
  try {
    OdAtomicFile out(file, options);
    out.write(bytes);
    out.commit();
  } catch (const OdError& e) {
    return e.description().toUtf8();
  }
  return {};
}

}  // namespace

HostConfigTree::HostConfigTree(fs::path file) : file_(std::move(file)), doc_(freshDocument()) {}

std::shared_ptr<HostConfigTree> HostConfigTree::open(const fs::path& file) {
  auto tree = std::make_shared<HostConfigTree>(file);
  tree->load();
  return tree;
}

std::shared_ptr<HostConfigTree> HostConfigTree::openDetached(const fs::path& file) {
  auto tree = std::make_shared<HostConfigTree>(file);
  tree->detached_ = true;
  tree->load();
  return tree;
}

Json HostConfigTree::parse(std::string_view bytes) {
  constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  if (bytes.size() > kMaxFileBytes)
    throw FormatError("larger than " + std::to_string(kMaxFileBytes / kMegabyte) + " MB");
  // Containers enclosing the deepest allowed one: the document, the root key, then per key
  // level its "keys" object and the key, then the key's "values" object around a typed value.
  DocumentBuilder builder(2 + 2 * kMaxKeyDepth + 1,
                          "nested deeper than " + std::to_string(kMaxKeyDepth) + " levels");
  Json::sax_parse(bytes.begin(), bytes.end(), &builder);
  Json doc = std::move(builder.document());
  if (!doc.is_object() || !doc.contains("root")) throw FormatError("no \"root\" key");
  if (!doc.contains("format") || doc["format"] != 1)
    throw FormatError("unknown format (expected \"format\": 1)");
  if (std::string problem = checkKey(doc["root"], "the root key"); !problem.empty())
    throw FormatError(problem);
  return doc;
}

fs::path HostConfigTree::defaultPath() {
  if (const char* env = std::getenv("STAUDIT_CONFIG"); env && *env) return fs::path(env);
  fs::path base;
  if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg && xdg[0] == '/') {
    base = xdg;
  } else {
    const char* home = std::getenv("HOME");
    if (!home || !*home) {
      if (const passwd* pw = ::getpwuid(::getuid())) home = pw->pw_dir;
    }
    if (!home || !*home) return {};
    base = fs::path(home) / ".config";
  }
  return base / "standards-audit" / "config.json";
}

Json HostConfigTree::freshDocument() {
  Json root = emptyKey();
  root["keys"]["cmddata"] = emptyKey();
  return Json{{"format", 1}, {"root", std::move(root)}};
}

void HostConfigTree::load() {
  std::error_code ec;
  fs::file_status status = fs::status(file_, ec);
  if (!fs::exists(status)) return;  // the first run
  // Only a file that was read can be judged corrupt; anything else is left alone.
  if (!fs::is_regular_file(status)) {
    warn("cannot read configuration file " + file_.string() +
         ": it is not a file; using a fresh configuration");
    return;
  }
  // Read at most one byte past the limit, so that an oversized file (even one still growing)
  // is judged without being read whole.
  std::string bytes;
  std::ifstream in(file_, std::ios::binary);
  char chunk[1 << 16];
  while (in && bytes.size() <= kMaxFileBytes) {
    in.read(chunk, sizeof chunk);
    bytes.append(chunk, static_cast<std::size_t>(in.gcount()));
  }
  if (!in && !in.eof()) {
    if (!fs::exists(file_, ec)) return;  // set aside by another process since: as for a first run
    warn("cannot read configuration file " + file_.string() + ": " + systemError(errno) +
         "; using a fresh configuration");
    return;
  }
  std::string problem;
  try {
    doc_ = parse(bytes);
    return;
  } catch (const FormatError& e) {
    problem = e.what();
  }
  fs::path aside = file_.string() + ".corrupt-" + utcTimestamp();
  for (int n = 2; fs::exists(aside); ++n)
    aside = file_.string() + ".corrupt-" + utcTimestamp() + "-" + std::to_string(n);
  fs::rename(file_, aside, ec);
  // Gone meanwhile: another process reading the same file (stcheck's workers start together)
  // has set it aside and said so.
  if (ec == std::errc::no_such_file_or_directory) return;
  if (ec) {
    warn("configuration file " + file_.string() + " is corrupt (" + problem +
         ") and cannot be moved aside (" + ec.message() + "); using a fresh configuration");
  } else {
    warn("configuration file " + file_.string() + " is corrupt (" + problem + "); moved it to " +
         aside.string() + " and started a fresh configuration");
  }
}

const Json* HostConfigTree::findKey(const Path& path) const {
  const Json* key = &doc_["root"];
  for (const std::string& name : path) {
    const Json& keys = (*key)["keys"];
    auto it = keys.find(name);
    if (it == keys.end()) return nullptr;
    key = &*it;
  }
  return key;
}

Json* HostConfigTree::findKey(const Path& path) {
  return const_cast<Json*>(static_cast<const HostConfigTree*>(this)->findKey(path));
}

bool HostConfigTree::hasKey(const Path& path) const {
  return findKey(path) != nullptr;
}

bool HostConfigTree::createKey(const Path& path, const std::string& name) {
  Json* key = findKey(path);
  if (!key) return false;
  if ((*key)["keys"].contains(name)) return true;
  (*key)["keys"][name] = emptyKey();
  return saveChange();
}

bool HostConfigTree::deleteKey(const Path& path, const std::string& name) {
  Json* key = findKey(path);
  if (!key || !(*key)["keys"].contains(name)) return false;
  (*key)["keys"].erase(name);
  saveChange();
  return true;
}

std::vector<std::string> HostConfigTree::subkeyNames(const Path& path) const {
  std::vector<std::string> names;
  if (const Json* key = findKey(path))
    for (const auto& [name, v] : (*key)["keys"].items()) names.push_back(name);
  return names;
}

std::vector<std::string> HostConfigTree::valueNames(const Path& path) const {
  std::vector<std::string> names;
  if (const Json* key = findKey(path))
    for (const auto& [name, v] : (*key)["values"].items()) names.push_back(name);
  return names;
}

std::optional<OdVariant> HostConfigTree::getValue(const Path& path, const std::string& name) const {
  const Json* key = findKey(path);
  if (!key) return std::nullopt;
  const Json& values = (*key)["values"];
  auto it = values.find(name);
  if (it == values.end()) return std::nullopt;
  return decodeValue(*it);
}

bool HostConfigTree::setValue(const Path& path, const std::string& name, const OdVariant& value) {
  Json* key = findKey(path);
  if (!key) return false;
  Json stored = encodeValue(value);
  if (stored.is_null()) return false;
  Json& slot = (*key)["values"][name];
  if (slot == stored) return true;
  slot = std::move(stored);
  return saveChange();
}

bool HostConfigTree::deleteValue(const Path& path, const std::string& name) {
  Json* key = findKey(path);
  if (!key || !(*key)["values"].contains(name)) return false;
  (*key)["values"].erase(name);
  saveChange();
  return true;
}

bool HostConfigTree::saveChange() {
  if (batchDepth_ == 0) return save();
  unsaved_ = true;
  return true;
}

HostConfigTree::Batch::~Batch() {
  if (--tree_.batchDepth_ == 0 && tree_.unsaved_) {
    tree_.unsaved_ = false;
    tree_.save();
  }
}

bool HostConfigTree::save() {
  if (detached_) return true;
  if (file_.empty()) return false;
  std::string error = replaceFileAtomically(file_, doc_.dump(2) + "\n");
  if (!error.empty() && error != lastSaveError_)
    warn("cannot save configuration file " + file_.string() + ": " + error);
  lastSaveError_ = error;
  return error.empty();
}
