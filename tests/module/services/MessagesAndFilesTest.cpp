// The module's alerts as the host shows them, what is told about a standards file on disk,
// and the string table they draw on.

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

#include "ServicesTestSupport.h"
#include "StFileSystemService.h"
#include "StMessage.h"
#include "StStringTable.h"

namespace {

using namespace servicestest;

TEST(MessagesTest, NoticeAndErrorShowTheirTextsWithTheirIcons) {
  ConfigFile config;
  HostRun run(config.path());
  st::StMessage* messages = st::stMessage();
  run.host().front().clearOutput();
  EXPECT_EQ(messages->showMessage(1), 0);
  EXPECT_EQ(messages->showError(1), 0);
  EXPECT_EQ(run.output(), "");

  run.host().queueAnswer(kHostOk);
  EXPECT_EQ(messages->showMessage(st::kStMsgDuplicateFileName), kHostOk);
  std::string notice = run.output();
  EXPECT_NE(notice.find("Duplicate file name: a standards file with the same name is already "
                        "associated with the current drawing."),
            std::string::npos)
      << notice;
  run.host().front().clearOutput();
  EXPECT_EQ(messages->showError(st::kStMsgNoPluginChecked), kHostOk);
  std::string error = run.output();
  EXPECT_NE(error.find("no plug-ins are currently checked."), std::string::npos) << error;
  // The icon is named on the box's first line; the notice has none.
  EXPECT_EQ(notice.substr(0, notice.find('\n')), "message box \"\":");
  EXPECT_NE(error.substr(0, error.find('\n')), "message box \"\":");
}

TEST(FileInfoTest, ExistingMissingAndUnreadableFiles) {
  ConfigFile config;
  HostRun run(config.path());
  st::StFileSystemService* files = st::stFileSystemService();

  auto missing = (config.dir() / "gone.dws").string();
  st::StFileInfo info = files->getFileInfo(OdString(missing));
  EXPECT_FALSE(info.exists);
  EXPECT_EQ(info.path, OdString(missing) + L"\n(File not found)");
  EXPECT_TRUE(info.lastModified.isEmpty());

  auto standard = config.dir() / "office.dws";
  std::ofstream(standard) << "0\nEOF\n";
  // Noon UTC: the 7th in every time zone.
  std::filesystem::last_write_time(
      standard,
      std::filesystem::file_time_type::clock::from_sys(std::chrono::sys_seconds(
          std::chrono::sys_days{std::chrono::year{2021} / 3 / 7} + std::chrono::hours{12})));
  info = files->getFileInfo(OdString(standard.string()));
  EXPECT_TRUE(info.exists);
  EXPECT_EQ(info.path, OdString(standard.string()));
  std::string date = info.lastModified.toUtf8();
  EXPECT_EQ(date.rfind("7 ", 0), 0u) << date;
  EXPECT_GT(date.size(), std::string("7  2021").size()) << date;
  EXPECT_EQ(date.substr(date.size() - 5), " 2021") << date;

  if (geteuid() != 0) {  // the superuser reads any file
    std::filesystem::permissions(standard, std::filesystem::perms::none);
    info = files->getFileInfo(OdString(standard.string()));
    EXPECT_TRUE(info.exists);
    EXPECT_TRUE(info.lastModified.isEmpty());
  }
  EXPECT_FALSE(files->getFileInfo(OdString(config.dir().string())).exists);  // a folder
}

TEST(StringTableTest, TextsAsShownAndNothingForUnknownIds) {
  EXPECT_EQ(stLoadString(149), OdString(L"Failed to load  plugin: %s\n"));
  EXPECT_EQ(stLoadString(129), OdString(L"\n(File not found)"));
  EXPECT_NE(stLoadString(107).find(L"drawing.\r\nChoose OK"), -1);
  for (unsigned id : {0u, 103u, 104u, 116u, 148u, 151u}) EXPECT_TRUE(stLoadString(id).isEmpty());
  EXPECT_EQ(
      stFormatString(135, L"Ебен %s"),
      OdString(L"Failed to create plugin: Ебен %s. Please check correct plugin registration\n"));
}

}  // namespace
