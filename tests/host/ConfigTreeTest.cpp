// The configuration tree as a file on disk: kept across host runs in separate processes,
// set aside when corrupt or past the reader's limits, never seen half-written, never written
// by a detached tree.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "../../fuzz/ConfigReadCheck.h"
#include "HostConfigKey.h"
#include "HostConfigTree.h"
#include "HostEntryPoints.h"
#include "HostTestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readBytes;

// Runs `body` in a child process and returns its exit code (-1 when it did not exit).
template <class Body>
int inChildProcess(Body body) {
  std::fflush(nullptr);
  pid_t pid = fork();
  if (pid == 0) {
    int code = 1;
    try {
      code = body();
    } catch (...) {
      code = 3;
    }
    std::fflush(nullptr);
    _exit(code);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::vector<std::string> names(HostConfigNames e) {
  std::vector<std::string> out;
  for (std::string n; e.next(n);) out.push_back(n);
  return out;
}

std::vector<std::string> filesIn(const fs::path& dir) {
  std::vector<std::string> out;
  for (const auto& entry : fs::directory_iterator(dir)) out.push_back(entry.path().filename());
  std::sort(out.begin(), out.end());
  return out;
}

// A configuration whose keys nest `levels` deep below the root, with a value at the bottom.
std::string nestedKeys(int levels) {
  std::string text = R"({"format": 1, "root": )";
  for (int i = 0; i < levels; ++i) text += R"({"values": {}, "keys": {"k": )";
  text += R"({"keys": {}, "values": {"v": {"int32": 1}}})";
  for (int i = 0; i < levels; ++i) text += "}}";
  return text + "}";
}

TEST(HostConfigTree, ValuesPersistAcrossHostRunsInTwoProcesses) {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "sub" / "config.json";
  const std::vector<std::string> plugins{"StDWSLayerPlugin", "StDWSLinetypePlugin",
                                         "StDWSTextstylePlugin", "StDWSDimstylePlugin"};
  int code = inChildProcess([&] {
    HeadlessHost host(HeadlessHost::Options{file, nullptr});
    HostConfigKeyPtr cmddata = host.app().configRoot()->openSubkey("cmddata", false);
    if (!cmddata) return 10;
    HostConfigKeyPtr mine = cmddata->openSubkey("StandardsAudit", true);
    HostConfigKeyPtr keys = mine->openSubkey("Plugins", true);
    for (const std::string& name : plugins)
      if (!keys->openSubkey(name.c_str(), true)
               ->setValue("PluginInUse", OdVariant(std::int32_t(1))))
        return 11;
    bool ok = mine->setValue("autoFixCommands", OdVariant(std::int32_t(18))) &&
              mine->setValue("preferredFile", OdVariant(OdString(L"C:\\std\\Büro.dws"))) &&
              mine->setValue("autoFixProperties", OdVariant(true)) &&
              mine->setValue("scale", OdVariant(0.25));
    return ok ? 0 : 12;
  });
  ASSERT_EQ(code, 0);
  EXPECT_EQ(filesIn(file.parent_path()), std::vector<std::string>{"config.json"});

  HeadlessHost host(HeadlessHost::Options{file, nullptr});
  HostConfigKeyPtr mine =
      host.app().configRoot()->openSubkey("cmddata", false)->openSubkey("StandardsAudit", false);
  ASSERT_FALSE(mine.isNull());
  OdVariant v;
  ASSERT_TRUE(mine->getValue("autoFixCommands", v));
  EXPECT_EQ(v.varType(), OdVariant::kInt32);
  EXPECT_EQ(v.getInt32(), 18);
  ASSERT_TRUE(mine->getValue("preferredFile", v));
  EXPECT_EQ(v.getString(), OdString(L"C:\\std\\Büro.dws"));
  ASSERT_TRUE(mine->getValue("autoFixProperties", v));
  EXPECT_EQ(v.varType(), OdVariant::kBool);
  ASSERT_TRUE(mine->getValue("scale", v));
  EXPECT_EQ(v.getDouble(), 0.25);
  EXPECT_FALSE(mine->getValue("showIgnoredProblems", v));
  // Creation order, not alphabetical order.
  EXPECT_EQ(names(mine->openSubkey("Plugins", false)->subkeys()), plugins);
  EXPECT_EQ(names(mine->values()), (std::vector<std::string>{"autoFixCommands", "preferredFile",
                                                             "autoFixProperties", "scale"}));
}

TEST(HostConfigTree, KeysAreOpenedCreatedAndDeletedAsAsked) {
  testsupport::TempDir dir;
  auto tree = HostConfigTree::open(dir.path() / "config.json");
  HostConfigKeyPtr root = HostConfigKey::root(tree);
  EXPECT_EQ(names(root->subkeys()), std::vector<std::string>{"cmddata"}) << "a fresh tree";
  EXPECT_FALSE(fs::exists(dir.path() / "config.json")) << "written at the first change";

  HostConfigKeyPtr lib = root->openSubkey("cmddata", false)->openSubkey("Lib", true);
  EXPECT_TRUE(root->openSubkey("cmddata", false)->openSubkey("Other", false).isNull());
  EXPECT_EQ(names(root->openSubkey("cmddata", false)->subkeys()), std::vector<std::string>{"Lib"});
  ASSERT_TRUE(lib->setValue("PluginDll", OdVariant(OdString(L"StStandardPlugins.dll"))));
  EXPECT_FALSE(lib->setValue("object", OdVariant(OdRxObjectPtr()))) << "not a kept type";
  EXPECT_FALSE(lib->setValue("", OdVariant(std::int32_t(1))));

  // A handle to a deleted key fails safely and does not bring the key back.
  ASSERT_TRUE(root->openSubkey("cmddata", false)->deleteSubkey("Lib"));
  OdVariant v;
  EXPECT_FALSE(lib->getValue("PluginDll", v));
  EXPECT_FALSE(lib->setValue("PluginDll", OdVariant(std::int32_t(1))));
  EXPECT_TRUE(lib->openSubkey("Sub", true).isNull());
  EXPECT_FALSE(tree->hasKey({"cmddata", "Lib"}));
}

// A batch keeps a run of changes in memory and writes the file once, when the outermost
// batch closes; a batch that changed nothing writes nothing.
TEST(HostConfigTree, ABatchWritesTheFileOnceWhenItCloses) {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "config.json";
  auto tree = HostConfigTree::open(file);
  ASSERT_TRUE(tree->setValue({"cmddata"}, "kept", OdVariant(std::int32_t(1))));
  const std::string before = readBytes(file);
  {
    HostConfigTree::Batch outer(*tree);
    {
      HostConfigTree::Batch inner(*tree);
      EXPECT_TRUE(tree->createKey({"cmddata"}, "Lib"));
      EXPECT_TRUE(tree->setValue({"cmddata", "Lib"}, "a", OdVariant(std::int32_t(2))));
    }
    EXPECT_TRUE(tree->setValue({"cmddata", "Lib"}, "b", OdVariant(OdString(L"é"))));
    EXPECT_EQ(readBytes(file), before) << "nothing is written while a batch is open";
    EXPECT_EQ(tree->getValue({"cmddata", "Lib"}, "a")->getInt32(), 2) << "but it is read back";
  }
  auto reread = HostConfigTree::open(file);
  EXPECT_EQ(reread->getValue({"cmddata", "Lib"}, "a")->getInt32(), 2);
  EXPECT_EQ(reread->getValue({"cmddata", "Lib"}, "b")->getString(), OdString(L"é"));

  fs::remove(file);
  { HostConfigTree::Batch idle(*tree); }
  EXPECT_FALSE(fs::exists(file)) << "a batch without changes does not write";
}

// Whether the tree is detached or not: the user's file is named in one warning line and kept
// aside as it was.
TEST(HostConfigTree, CorruptFileIsSetAsideWithOneWarning) {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "config.json";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"{\"format\": 1, \"root\": {\"keys\": {", "parse error"},
      {"[1, 2]", "no \"root\" key"},
      {"{\"format\": 1, \"root\": {\"keys\": {}, \"values\": {\"x\": {\"int32\": 1e99}}}}",
       "value \"x\" of the root key is not a typed value"},
      {"{\"format\": 1, \"root\": {\"keys\": {}, \"values\": {\"x\": {\"double\": 1e999}}}}",
       "number overflow"},
      {"{\"format\": 1, \"root\": {\"keys\": {\"a\\nb\": 3}, \"values\": {}}}",
       "key \"a\\nb\" is not an object"},
      {nestedKeys(HostConfigTree::kMaxKeyDepth + 1), "nested deeper than 64 levels"},
      {std::string(100000, '['), "nested deeper than 64 levels"},
      {std::string(HostConfigTree::kMaxFileBytes + 1, ' '), "larger than 16 MB"},
  };
  for (bool detached : {false, true}) {
    for (const auto& [text, why] : cases) {
      SCOPED_TRACE(why + (detached ? " (detached)" : ""));
      for (const auto& entry : fs::directory_iterator(dir.path())) fs::remove(entry.path());
      std::ofstream(file, std::ios::binary) << text;
      testing::internal::CaptureStderr();
      {
        HeadlessHost host(HeadlessHost::Options{file, nullptr, detached});
        EXPECT_FALSE(host.app().configRoot()->openSubkey("cmddata", false).isNull());
      }
      std::string warning = testing::internal::GetCapturedStderr();
      EXPECT_EQ(hosttest::count(warning, "\n"), 1u) << warning;
      EXPECT_NE(warning.find("configuration file " + file.string() + " is corrupt (" + why),
                std::string::npos)
          << warning;

      auto files = filesIn(dir.path());
      ASSERT_EQ(files.size(), 1u);
      EXPECT_TRUE(files[0].starts_with("config.json.corrupt-")) << files[0];
      EXPECT_TRUE(readBytes(dir.path() / files[0]) == text) << "kept as it was, for the user";
    }
  }
  // The deepest configuration allowed is read, and a repeated name as the plain parser reads it
  // (first place, last value).
  for (const std::string& text :
       {nestedKeys(HostConfigTree::kMaxKeyDepth),
        std::string(R"({"root": {"keys": {}, "values": {}}, "format": 1, "root": {"keys": {},)"
                    R"( "values": {"a": {"int8": 1}, "b": {"int8": 2}, "a": {"int8": 3}}}})")}) {
    EXPECT_NO_THROW(HostConfigTree::parse(text));
    EXPECT_EQ(ConfigReadCheck::check(text), "");
  }
}

// A detached tree sees the file as it is and keeps its changes in memory: it never creates,
// writes or leaves a temporary beside the file.
TEST(HostConfigTree, ADetachedTreeReadsTheFileAndNeverWritesIt) {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "config.json";
  auto change = [](HostConfigTree& tree) {
    HostConfigTree::Batch batch(tree);
    return tree.setValue({"cmddata"}, "kept", OdVariant(std::int32_t(8))) &&
           tree.createKey({"cmddata"}, "Lib") && tree.save();
  };
  EXPECT_TRUE(change(*HostConfigTree::openDetached(file)));
  EXPECT_TRUE(filesIn(dir.path()).empty()) << "no file is created";

  ASSERT_TRUE(
      HostConfigTree::open(file)->setValue({"cmddata"}, "kept", OdVariant(std::int32_t(7))));
  const std::string before = readBytes(file);
  auto detached = HostConfigTree::openDetached(file);
  EXPECT_EQ(detached->getValue({"cmddata"}, "kept")->getInt32(), 7);
  EXPECT_TRUE(change(*detached));
  EXPECT_EQ(detached->getValue({"cmddata"}, "kept")->getInt32(), 8) << "changed for this run";
  EXPECT_TRUE(detached->lastSaveError().empty());
  EXPECT_EQ(readBytes(file), before);
  EXPECT_EQ(filesIn(dir.path()), std::vector<std::string>{"config.json"});
}

// Inputs the configuration reader fuzzer found faults with, kept in fuzz/config-regressions.
TEST(HostConfigTree, KeptFuzzerInputsAreReadOrRefusedCleanly) {
  const fs::path folder = fs::path(STAUDIT_SOURCE_DIR) / "fuzz" / "config-regressions";
  std::vector<fs::path> inputs;
  if (fs::is_directory(folder))
    for (const auto& entry : fs::directory_iterator(folder))
      if (entry.is_regular_file() && entry.path().extension() != ".md")
        inputs.push_back(entry.path());
  if (inputs.empty()) GTEST_SKIP() << "no kept fuzzer inputs in " << folder;
  std::sort(inputs.begin(), inputs.end());
  for (const fs::path& input : inputs) {
    SCOPED_TRACE(input.filename().string());
    try {
      EXPECT_EQ(ConfigReadCheck::check(readBytes(input)), "");
    } catch (const std::exception& e) {
      ADD_FAILURE() << "threw something other than FormatError: " << e.what();
    }
  }
}

TEST(HostConfigTree, ReadersNeverSeeAHalfWrittenFile) {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "config.json";
  HostConfigTree::open(file)->save();
  const std::string big(20000, 'x');

  pid_t writer = fork();
  if (writer == 0) {
    auto tree = HostConfigTree::open(file);
    for (int i = 0; i < 150; ++i)
      tree->setValue({"cmddata"}, "v" + std::to_string(i % 7),
                     OdVariant(OdString::fromUtf8(big + std::to_string(i))));
    _exit(0);
  }
  int reads = 0;
  int status = 0;
  while (waitpid(writer, &status, WNOHANG) == 0) {
    std::string text = readBytes(file);
    ++reads;
    EXPECT_TRUE(nlohmann::json::accept(text))
        << "read " << reads << ": " << text.size() << " bytes";
    if (HasFailure()) break;
  }
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  RecordProperty("reads", reads);
  EXPECT_EQ(filesIn(dir.path()), std::vector<std::string>{"config.json"}) << "no temporary left";
  EXPECT_EQ(HostConfigTree::open(file)->getValue({"cmddata"}, "v5")->getString(),
            OdString::fromUtf8(big + "145"));
}

TEST(HostConfigTree, FailedSaveKeepsTheOldFileAndWarns) {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "config.json";
  auto tree = HostConfigTree::open(file);
  ASSERT_TRUE(tree->setValue({"cmddata"}, "kept", OdVariant(std::int32_t(1))));
  const std::string before = readBytes(file);

  // A second tree whose file cannot be replaced: its path is taken by a folder.
  const fs::path blocked = dir.path() / "blocked.json";
  fs::create_directory(blocked);
  fs::copy_file(file, blocked / "inside.json");
  auto other = HostConfigTree::open(blocked);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(other->setValue({"cmddata"}, "lost", OdVariant(std::int32_t(2))));
  EXPECT_FALSE(other->setValue({"cmddata"}, "lost2", OdVariant(std::int32_t(3))));
  std::string warning = testing::internal::GetCapturedStderr();
  EXPECT_EQ(hosttest::count(warning, "cannot save configuration file"), 1u) << warning;
  EXPECT_EQ(other->getValue({"cmddata"}, "lost")->getInt32(), 2) << "kept for this run";

  EXPECT_EQ(readBytes(file), before);
  EXPECT_EQ(filesIn(dir.path()), (std::vector<std::string>{"blocked.json", "config.json"}));
  EXPECT_EQ(filesIn(blocked), std::vector<std::string>{"inside.json"});
}

TEST(HostConfigTree, FileIsChosenFromTheEnvironment) {
  const char* keep = std::getenv("STAUDIT_CONFIG");
  const char* keepXdg = std::getenv("XDG_CONFIG_HOME");
  setenv("STAUDIT_CONFIG", "/tmp/x/settings.json", 1);
  EXPECT_EQ(HostConfigTree::defaultPath(), fs::path("/tmp/x/settings.json"));
  unsetenv("STAUDIT_CONFIG");
  setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
  EXPECT_EQ(HostConfigTree::defaultPath(), fs::path("/tmp/xdg/standards-audit/config.json"));
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_TRUE(
      HostConfigTree::defaultPath().string().ends_with("/.config/standards-audit/config.json"));
  if (keep) setenv("STAUDIT_CONFIG", keep, 1);
  if (keepXdg) setenv("XDG_CONFIG_HOME", keepXdg, 1);
}

}  // namespace
