// What `stcheck check --fix` and its reports may never do to a user's files, tried as a user
// and as a hostile folder would try it: the built stcheck on the example project (and a
// larger drawing made from it with ezdxf) in a temporary folder, killed at random moments,
// run twice at once, and pointed at links, read-only files, full and read-only disks.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::ProcessResult;
using testsupport::readBytes;
using testsupport::runCommand;
using testsupport::shellQuote;

// The example project, and a drawing of 30,000 more lines made from its floor plan, so that
// reading and writing take long enough to be killed in the middle.
class StcheckSafety : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    examples_ = new testsupport::TempDir;
    auto made = testsupport::makeExamples(examples_->path());
    ASSERT_EQ(made.exitCode, 0) << made.output;
    auto big = testsupport::ezdxf(
        "d = ezdxf.readfile(path)\nm = d.modelspace()\n"
        "for i in range(30000): m.add_line((i, 0), (i, 1), dxfattribs={'layer': 'A-WALL'})\n"
        "d.saveas(path[:-4] + '-large.dxf')\n",
        examples_->path() / "floor-plan.dxf");
    ASSERT_EQ(big.exitCode, 0) << big.output;
    // What a fix makes of each, for the tests to tell a fixed drawing from a damaged one.
    for (const char* name : {"floor-plan", "floor-plan-large"}) {
      fs::copy_file(examples_->path() / (std::string(name) + ".dxf"),
                    examples_->path() / (std::string(name) + "-fixed.dxf"));
      auto fix = testsupport::runStcheckIn(examples_->path(), examples_->path() / "config.json",
                                           {"check", std::string(name) + "-fixed.dxf", "--fix"});
      ASSERT_EQ(fix.exitCode, 1) << fix.output;
    }
  }
  static void TearDownTestSuite() {
    delete examples_;
    examples_ = nullptr;
  }

  void SetUp() override { copyStandards(examples_->path(), temp_.path()); }

  // The example's standards files, which its drawings name, from `from` into `to`.
  static void copyStandards(const fs::path& from, const fs::path& to) {
    for (const char* name : {"office-standards.dws", "site-standards.dws"})
      fs::copy_file(from / name, to / name, fs::copy_options::overwrite_existing);
  }
  // Makes what runs killed outright left look an hour old: stale to the next run.
  static void age(const std::vector<std::string>& files) {
    for (const std::string& f : files) runCommand("touch -d '1 hour ago' " + shellQuote(f));
  }

  static std::string original(const std::string& name) {
    return readBytes(examples_->path() / (name + ".dxf"));
  }
  static std::string fixed(const std::string& name) {
    return readBytes(examples_->path() / (name + "-fixed.dxf"));
  }
  // A working copy of an example drawing in the test's folder.
  fs::path copy(const std::string& example, const std::string& as) const {
    fs::copy_file(examples_->path() / (example + ".dxf"), file(as),
                  fs::copy_options::overwrite_existing);
    return file(as);
  }
  fs::path file(const std::string& name) const { return temp_.path() / name; }
  ProcessResult stcheck(const std::vector<std::string>& args) const {
    return testsupport::runStcheckIn(temp_.path(), temp_.path() / "config.json", args);
  }
  // Starts stcheck in the test's folder with TMPDIR in the test's folder, its output going to
  // the file `log` (discarded when empty).
  pid_t start(const std::vector<std::string>& args, const std::string& log = "") const {
    std::string line =
        "cd " + shellQuote(temp_.path().string()) + " && TMPDIR=" + shellQuote(tmp().string()) +
        " STAUDIT_CONFIG=config.json exec " + shellQuote(std::string(STAUDIT_BIN_DIR) + "/stcheck");
    for (const auto& a : args) line += " " + shellQuote(a);
    line +=
        " >" + (log.empty() ? std::string("/dev/null") : shellQuote(file(log).string())) + " 2>&1";
    pid_t pid = fork();
    if (pid == 0) {
      execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    return pid;
  }
  fs::path tmp() const {
    fs::create_directories(temp_.path() / "tmp");
    return temp_.path() / "tmp";
  }
  // Names in `folder` (recursively) that are temporary files of a writer.
  static std::vector<std::string> leftovers(const fs::path& folder) {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      if (name.find(".partial") != std::string::npos || name.rfind("stcheck-", 0) == 0)
        found.push_back(entry.path().string());
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  static testsupport::TempDir* examples_;
  testsupport::TempDir temp_;
};

testsupport::TempDir* StcheckSafety::examples_ = nullptr;

// Mounts a tmpfs of `options` at `where`; false when this process may not mount.
bool mountTmpfs(const fs::path& where, const std::string& options) {
  fs::create_directories(where);
  return ::mount("tmpfs", where.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

TEST_F(StcheckSafety, AReportNeverReplacesADrawingAStandardOrABackup) {
  copy("floor-plan", "plan.dxf");
  fs::create_hard_link(file("plan.dxf"), file("plan-link.json"));
  std::ofstream(file("victim.txt")) << "keep";
  fs::create_symlink(file("victim.txt"), file("report.txt"));
  for (const std::string target :
       {"plan.bak", "office-standards.dws", "other.DXF", "plan-link.json", "plan.dxf.bak"}) {
    auto run = stcheck({"check", "plan.dxf", "--fix", "-o", target});
    EXPECT_EQ(run.exitCode, 2) << target;
    EXPECT_NE(run.output.find("the report cannot be written to " + target), std::string::npos)
        << run.output;
  }
  EXPECT_EQ(readBytes(file("plan.dxf")), original("floor-plan"));
  EXPECT_FALSE(fs::exists(file("plan.bak")));

  // A link where the report goes is replaced, never written through.
  auto run = stcheck({"check", "plan.dxf", "-o", "report.txt"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_EQ(readBytes(file("victim.txt")), "keep");
  EXPECT_FALSE(fs::is_symlink(file("report.txt")));
  // ...but a stream is written through and stays a stream: /dev/stdout (a link to the pipe
  // the output goes to here) is neither read as a drawing nor replaced.
  run = stcheck({"check", "plan.dxf", "--format", "json", "-o", "/dev/stdout"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_NE(run.output.find("\"schemaVersion\""), std::string::npos) << run.output;
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status("/dev/stdout")));
  // A report that cannot be written says where and why, in one line.
  run = stcheck({"check", "plan.dxf", "-o", "no/such/folder/r.txt"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.output.find('\n'), run.output.size() - 1) << run.output;
  EXPECT_NE(run.output.find("no/such/folder/r.txt"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("No such file or directory"), std::string::npos) << run.output;
}

TEST_F(StcheckSafety, EveryDrawingKeepsItsOwnOriginalAndLinksAreNotFollowed) {
  copy("floor-plan", "plan.dxf");
  // A second drawing of the same name that differs from the first.
  std::ofstream(file("plan.DXF"), std::ios::binary) << "999\nsecond\n" << original("floor-plan");
  copy("floor-plan", "old.bak");
  copy("floor-plan", "floor-plan.dxf");
  std::ofstream(file("victim.txt")) << "keep";
  fs::create_symlink(file("victim.txt"), file("floor-plan.bak"));
  auto run = stcheck({"check", "plan.dxf", "plan.DXF", "old.bak", "floor-plan.dxf", "--fix"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_EQ(readBytes(file("plan.dxf.bak")), original("floor-plan"));
  EXPECT_EQ(readBytes(file("plan.DXF.bak")), "999\nsecond\n" + original("floor-plan"));
  EXPECT_FALSE(fs::exists(file("plan.bak")));
  EXPECT_EQ(readBytes(file("old.bak.bak")), original("floor-plan"));
  EXPECT_EQ(readBytes(file("old.bak")), fixed("floor-plan"));
  EXPECT_EQ(readBytes(file("victim.txt")), "keep");
  EXPECT_FALSE(fs::is_symlink(file("floor-plan.bak")));
  EXPECT_EQ(readBytes(file("floor-plan.bak")), original("floor-plan"));
  EXPECT_NE(run.output.find("original kept as plan.DXF.bak"), std::string::npos) << run.output;

  // A name that leaves room for little more than ".bak" is fixed like any other.
  const std::string longName(247, 'x');
  copy("floor-plan", longName + ".dxf");
  run = stcheck({"check", longName + ".dxf", "--fix"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_EQ(readBytes(file(longName + ".bak")), original("floor-plan"));
  EXPECT_EQ(readBytes(file(longName + ".dxf")), fixed("floor-plan"));
  EXPECT_TRUE(leftovers(temp_.path()).empty());
}

TEST_F(StcheckSafety, DrawingsThatMayNotBeWrittenAreReportedUnfixed) {
  copy("floor-plan", "plan.dxf");
  fs::permissions(file("plan.dxf"), fs::perms::owner_read | fs::perms::group_read);
  fs::create_symlink(file("plan.dxf"), file("link.dxf"));
  for (const std::string name : {"plan.dxf", "link.dxf"}) {
    auto run = stcheck({"check", name, "--fix", "--format", "json", "-o", "r.json"});
    EXPECT_EQ(run.exitCode, 2) << run.output;
    auto summary = runCommand(
        std::string(STAUDIT_PYTHON) + " -c " +
        shellQuote("import json,sys\nd=json.load(open(sys.argv[1]))"
                   "['drawings'][0]\nprint(d['counts']['found'], "
                   "d['remaining'], d['counts']['ignored'], d['backup'], d['notFixed'])") +
        " " + shellQuote(file("r.json").string()));
    EXPECT_EQ(summary.output, name == "plan.dxf"
                                  ? "10 9 1 None it is read-only\n"
                                  : "10 9 1 None it is a symbolic link to " +
                                        file("plan.dxf").string() + ": fix the file it leads to\n");
  }
  // Changing its list of standards files is refused the same way.
  auto listed = stcheck({"standards", "plan.dxf", "--clear"});
  EXPECT_EQ(listed.exitCode, 2);
  EXPECT_NE(listed.output.find("plan.dxf: it is read-only"), std::string::npos) << listed.output;
  EXPECT_EQ(readBytes(file("plan.dxf")), original("floor-plan"));
  EXPECT_FALSE(fs::exists(file("plan.bak")));

  // A folder on a read-only disk: the problems are reported, none as fixed.
  const fs::path disk = file("disk");
  if (!mountTmpfs(disk, "size=4m")) GTEST_SKIP() << "cannot mount a tmpfs here (not root)";
  copy("floor-plan", "disk/plan.dxf");
  copyStandards(temp_.path(), disk);
  ASSERT_EQ(::mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  auto run = stcheck({"check", "disk/plan.dxf", "--fix"});
  ::umount(disk.c_str());
  EXPECT_EQ(run.exitCode, 2) << run.output;
  EXPECT_NE(run.output.find("9 remaining"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("not fixed: "), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("Read-only file system"), std::string::npos) << run.output;
}

TEST_F(StcheckSafety, AFullDiskLosesNeitherTheDrawingNorTheLastBackup) {
  const fs::path disk = file("disk");
  const std::size_t size = original("floor-plan-large").size();
  // Room for the drawing, its last backup and a little: not for a new copy of each.
  if (!mountTmpfs(disk, "size=" + std::to_string(size * 2 + size / 2)))
    GTEST_SKIP() << "cannot mount a tmpfs here (not root)";
  copy("floor-plan-large", "disk/plan.dxf");
  std::ofstream(disk / "plan.bak", std::ios::binary) << original("floor-plan-large");
  copyStandards(temp_.path(), disk);
  auto run = stcheck({"check", "disk/plan.dxf", "--fix"});
  const std::string drawing = readBytes(disk / "plan.dxf"), backup = readBytes(disk / "plan.bak");
  const auto left = leftovers(disk);
  ::umount(disk.c_str());
  EXPECT_EQ(run.exitCode, 2) << run.output;
  EXPECT_NE(run.output.find("No space left on device"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("0 fixed automatically"), std::string::npos) << run.output;
  EXPECT_TRUE(drawing == original("floor-plan-large"));
  EXPECT_TRUE(backup == original("floor-plan-large"));
  EXPECT_TRUE(left.empty()) << left.front();
}

TEST_F(StcheckSafety, AnotherUsersDrawingKeepsItsOwnerGroupAndMode) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can own files of another user";
  copy("floor-plan", "plan.dxf");
  ASSERT_EQ(::chown(file("plan.dxf").c_str(), 1234, 5678), 0);
  ASSERT_EQ(::chmod(file("plan.dxf").c_str(), 0640), 0);
  auto run = stcheck({"check", "plan.dxf", "--fix"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  for (const char* name : {"plan.dxf", "plan.bak"}) {
    struct stat st {};
    ASSERT_EQ(::stat(file(name).c_str(), &st), 0);
    EXPECT_EQ(st.st_uid, 1234u) << name;
    EXPECT_EQ(st.st_gid, 5678u) << name;
    EXPECT_EQ(st.st_mode & 07777, 0640u) << name;
  }
}

TEST_F(StcheckSafety, TwoFixesAtOnceTakeTurnsAndKeepTheOriginal) {
  // A run waits, saying so, while another holds the drawing.
  copy("floor-plan", "plan.dxf");
  int held = ::open(file("plan.dxf").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  pid_t waiting = start({"check", "plan.dxf", "--fix"}, "waiting.log");
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_EQ(waitpid(waiting, nullptr, WNOHANG), 0) << "did not wait";
  EXPECT_EQ(readBytes(file("plan.dxf")), original("floor-plan"));
  ::close(held);
  int status = 0;
  waitpid(waiting, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_NE(readBytes(file("waiting.log")).find("being written by another stcheck run"),
            std::string::npos);

  for (int trial = 0; trial < 5; ++trial) {
    copy("floor-plan-large", "plan.dxf");
    fs::remove(file("plan.bak"));
    pid_t a = start({"check", "plan.dxf", "--fix"});
    pid_t b = start({"check", "plan.dxf", "--fix"});
    int sa = 0, sb = 0;
    waitpid(a, &sa, 0);
    waitpid(b, &sb, 0);
    EXPECT_EQ(WEXITSTATUS(sa), 1) << trial;
    EXPECT_EQ(WEXITSTATUS(sb), 1) << trial;
    EXPECT_TRUE(readBytes(file("plan.bak")) == original("floor-plan-large")) << trial;
    EXPECT_TRUE(readBytes(file("plan.dxf")) == fixed("floor-plan-large")) << trial;
  }
}

// Kills at random moments of a fix: the drawing and its backup are each the old or the new
// file, whole. A stop signal leaves no temporary file; after a SIGKILL, which cannot be
// caught, the next run removes what the killed one left.
TEST_F(StcheckSafety, AKilledFixLeavesWholeFilesAndNoTemporaryOnes) {
  std::mt19937 random(20261124);
  const std::string before = original("floor-plan-large"), after = fixed("floor-plan-large");
  int killedMidway = 0;
  for (int trial = 0; trial < 24; ++trial) {
    copy("floor-plan-large", "plan.dxf");
    fs::remove(file("plan.bak"));
    const int signal = trial % 3 == 2 ? SIGKILL : (trial % 3 ? SIGINT : SIGTERM);
    const auto earlier = leftovers(temp_.path());  // of runs killed outright before
    pid_t pid = start({"check", "plan.dxf", "--fix"});
    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 120));
    kill(pid, signal);
    int status = 0;
    waitpid(pid, &status, 0);
    killedMidway += WIFSIGNALED(status);
    const std::string drawing = readBytes(file("plan.dxf"));
    EXPECT_TRUE(drawing == before || drawing == after) << trial;
    if (fs::exists(file("plan.bak"))) {
      EXPECT_TRUE(readBytes(file("plan.bak")) == before) << trial;
    }
    if (signal != SIGKILL) {
      EXPECT_EQ(leftovers(temp_.path()), earlier) << trial;
    }
    if (WIFSIGNALED(status)) {
      EXPECT_EQ(WTERMSIG(status), signal) << trial;
    }
  }
  EXPECT_GT(killedMidway, 0);
  // What killed runs left is old news to the next run in that folder.
  age(leftovers(temp_.path()));
  copy("floor-plan", "plan.dxf");
  auto run = stcheck({"check", "plan.dxf", "--fix"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_TRUE(leftovers(temp_.path()).empty());
}

// A stopped --jobs run stops its workers with it: nothing is fixed after it ended, every
// drawing is whole, and no temporary file or folder remains; a killed one's workers stop
// too, and the next run removes its folder.
TEST_F(StcheckSafety, StoppingAJobsRunStopsItsWorkers) {
  fs::create_directories(file("plans"));
  const std::string before = original("floor-plan-large"), after = fixed("floor-plan-large");
  for (int signal : {SIGTERM, SIGKILL}) {
    for (int i = 0; i < 30; ++i) copy("floor-plan-large", "plans/p" + std::to_string(i) + ".dxf");
    copyStandards(temp_.path(), file("plans"));
    pid_t pid = start({"check", "plans", "--fix", "--jobs", "2"});
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    kill(pid, signal);
    waitpid(pid, nullptr, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    std::map<std::string, std::string> state;
    for (const auto& entry : fs::directory_iterator(file("plans")))
      state[entry.path().string()] = readBytes(entry.path());
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    std::size_t fixedCount = 0;
    for (const auto& [path, bytes] : state) {
      EXPECT_EQ(readBytes(path), bytes) << path << " changed after the run ended";
      if (path.find(".dxf") == path.size() - 4) {
        EXPECT_TRUE(bytes == before || bytes == after) << path;
        fixedCount += bytes == after;
      }
    }
    EXPECT_LT(fixedCount, 30u) << "the run ended before it was stopped";
    if (signal == SIGTERM) {
      EXPECT_TRUE(leftovers(file("plans")).empty());
      EXPECT_TRUE(leftovers(tmp()).empty());
    }
  }
  age(leftovers(tmp()));
  age(leftovers(file("plans")));
  pid_t pid = start({"check", "plans", "--fix", "--jobs", "2"});
  waitpid(pid, nullptr, 0);
  EXPECT_TRUE(leftovers(tmp()).empty());
  EXPECT_TRUE(leftovers(file("plans")).empty());
}

}  // namespace
