// Result codes and the kernel's exception.

#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "OdError.h"
#include "OdResult.h"

namespace {

bool isLowerCaseMessage(const std::string& text) {
  for (char c : text)
    if (std::isupper(static_cast<unsigned char>(c))) return false;
  return !text.empty() && text.back() != '.';
}

// Reads the codes from the header itself, so a code added there without a name or a
// message here fails.
TEST(ErrorCodes, EveryDeclaredCodeHasItsNameAndAMessage) {
  std::ifstream header(std::string(STAUDIT_SOURCE_DIR) + "/kernel/root/OdResult.h");
  ASSERT_TRUE(header) << "cannot read OdResult.h";
  std::set<std::string> messages;
  int count = 0;
  // Enumerator lines read "  eName = 123,", perhaps with a comment after them.
  for (std::string line; std::getline(header, line);) {
    std::istringstream words(line);
    std::string name, equals;
    int value = 0;
    if (!(words >> name >> equals >> value) || equals != "=" || name.size() < 2 || name[0] != 'e')
      continue;
    const auto code = static_cast<OdResult>(value);
    EXPECT_EQ(odResultName(code), name);
    const std::string message = odResultMessage(code);
    EXPECT_TRUE(isLowerCaseMessage(message)) << name << ": " << message;
    EXPECT_TRUE(messages.insert(message).second) << name << " repeats \"" << message << "\"";
    ++count;
  }
  EXPECT_GE(count, 30);
  EXPECT_STREQ(odResultName(static_cast<OdResult>(9999)), "eUnknownResult");
  EXPECT_STREQ(odResultMessage(static_cast<OdResult>(-1)), "unknown error");
}

TEST(ErrorCodes, ErrorsCarryCodeAndReadableMessage) {
  OdError bare(eKeyNotFound);
  EXPECT_EQ(bare.code(), eKeyNotFound);
  EXPECT_STREQ(bare.what(), "key not found");
  EXPECT_EQ(bare.description(), OdString("key not found"));
  EXPECT_STREQ(OdError(eBadDxfFile, "").what(), "malformed dxf file");
  EXPECT_STREQ(OdError(eBadDxfFile, static_cast<const char*>(nullptr)).what(),
               "malformed dxf file");

  // A message with text from a drawing survives as UTF-8 and comes back whole.
  OdError named(eDuplicateRecordName, OdString("layer \"Слой\" exists already"));
  EXPECT_STREQ(named.what(), "layer \"Слой\" exists already");
  EXPECT_EQ(named.description(), OdString("layer \"Слой\" exists already"));

  // Caught as the standard exception, as a caller outside the kernel would.
  try {
    throw OdError_InvalidIndex(12, 3);
  } catch (const std::exception& e) {
    EXPECT_STREQ(e.what(), "index 12 out of range (size 3)");
  }
}

}  // namespace
