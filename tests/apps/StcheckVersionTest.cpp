#include <gtest/gtest.h>

#include "TestSupport.h"

namespace {

using testsupport::runStcheck;

TEST(Stcheck, VersionHelpAndBadArguments) {
  auto version = runStcheck({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_NE(version.output.find("stcheck 0."), std::string::npos) << version.output;
  auto help = runStcheck({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.output.find("Usage"), std::string::npos) << help.output;
  auto bad = runStcheck({"--no-such-option"});
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_NE(bad.output.find("no-such-option"), std::string::npos) << bad.output;
}

}  // namespace
