// OdAtomicFile on real files in a temporary folder: a refused or failed commit leaves the
// target and the folder as they were, and the stale-file sweep removes only what no live
// writer holds.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <thread>

#include "OdAtomicFile.h"
#include "OdError.h"
#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readBytes;

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

void makeOld(const fs::path& file) {
  struct utimbuf old {
    0, 0
  };
  ASSERT_EQ(::utime(file.c_str(), &old), 0);
}

TEST(AtomicFile, ACommitThatIsRefusedLeavesEverythingAsItWas) {
  testsupport::TempDir dir;
  const fs::path target = dir.path() / "plan.dxf";
  std::ofstream(target) << "old";
  std::optional<OdFileStamp> read = OdFileStamp::of(target);
  ASSERT_TRUE(read);

  // Another program wrote the file after it was read: its work is not overwritten.
  std::ofstream(target, std::ios::app) << " and theirs";
  OdAtomicFile::Options expecting;
  expecting.expected = read;
  {
    OdAtomicFile file(target, expecting);
    file.write("new");
    EXPECT_THROW(file.commit(), OdError);
  }
  EXPECT_EQ(readBytes(target), "old and theirs");

  // What must happen just before the rename fails: the rename does not happen.
  OdAtomicFile::Options hooked;
  hooked.beforeRename = [] { throw OdError(eFileWriteError, "backup failed"); };
  {
    OdAtomicFile file(target, hooked);
    file.write("new");
    EXPECT_THROW(file.commit(), OdError);
  }
  EXPECT_EQ(readBytes(target), "old and theirs");

  // A file the user made read-only is not replaced.
  fs::permissions(target, fs::perms::owner_read);
  EXPECT_THROW(OdAtomicFile{target}, OdError);
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);

  // A writer that goes away uncommitted leaves nothing behind.
  { OdAtomicFile(target).write("dropped"); }
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"plan.dxf"});

  // A name as long as a file name may be still has room for its temporary file.
  const fs::path longName = dir.path() / (std::string(251, 'x') + ".dxf");
  OdAtomicFile file(longName);
  file.write("long");
  file.commit();
  EXPECT_EQ(readBytes(longName), "long");
  EXPECT_EQ(namesIn(dir.path()).size(), 2u);
}

TEST(AtomicFile, TheSweepRemovesOnlyWhatNoLiveWriterHolds) {
  testsupport::TempDir dir;
  OdAtomicFile live(dir.path() / "live.dxf");
  live.write("in progress");
  // A dead writer's leftover, one just made (its writer may not hold it yet), and a file of
  // the user that only looks alike.
  const fs::path dead = dir.path() / ".dead.dxf.AbC123.partial";
  const fs::path fresh = dir.path() / ".fresh.dxf.AbC123.partial";
  const fs::path user = dir.path() / "notes.partial";
  for (const fs::path& p : {dead, fresh, user}) std::ofstream(p) << "x";
  for (const auto& entry : fs::directory_iterator(dir.path())) makeOld(entry.path());
  std::ofstream(fresh) << "touched";

  EXPECT_EQ(OdAtomicFile::removeStale(dir.path()), 1u);
  EXPECT_FALSE(fs::exists(dead));
  EXPECT_TRUE(fs::exists(fresh));
  EXPECT_TRUE(fs::exists(user));
  live.commit();
  EXPECT_EQ(readBytes(dir.path() / "live.dxf"), "in progress");
}

// A device or a pipe at the target (`-o /dev/stdout`, a FIFO a script reads) is written
// through, and stays what it was: replacing it would put a regular file where the pipe was.
// Other kinds of file are refused.
TEST(AtomicFile, StreamsAreWrittenThroughAndStayStreams) {
  testsupport::TempDir dir;
  const fs::path fifo = dir.path() / "report.pipe";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  fs::create_symlink(fifo, dir.path() / "link-to-pipe");
  for (const fs::path& target : {fifo, dir.path() / "link-to-pipe"}) {
    std::string received;
    std::thread reader([&] {
      std::ifstream in(fifo, std::ios::binary);
      received.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    });
    {
      OdAtomicFile file(target);
      EXPECT_TRUE(file.isStream());
      file.write("through the pipe\n");
      file.commit();
    }
    reader.join();
    EXPECT_EQ(received, "through the pipe\n");
    EXPECT_TRUE(fs::is_fifo(fs::symlink_status(fifo)));
  }
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status(dir.path() / "link-to-pipe")));
  EXPECT_EQ(namesIn(dir.path()), (std::vector<std::string>{"link-to-pipe", "report.pipe"}));

  fs::create_directory(dir.path() / "folder");
  try {
    OdAtomicFile file(dir.path() / "folder");
    ADD_FAILURE() << "a folder was taken as a target";
  } catch (const OdError& e) {
    EXPECT_NE(std::string(e.what()).find("it is a folder, not a file"), std::string::npos)
        << e.what();
  }
}
}  // namespace
