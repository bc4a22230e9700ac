// Documents over real drawing files, followed by a document-manager reactor, and the
// system variables each document carries.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HostApDocManagerReactor.h"
#include "HostEntryPoints.h"
#include "HostPaths.h"
#include "HostTestSupport.h"
#include "OdError.h"

namespace {

using hosttest::QuietHost;

class DocLog : public HostApDocManagerReactor {
 public:
  void onDocumentCreateStarted(HostDocument* doc) override { add("create-started", doc); }
  void onDocumentCreated(HostDocument* doc) override { add("created", doc); }
  void onDocumentCreateCanceled(HostDocument* doc, const OdString&) override {
    add("create-canceled", doc);
  }
  void onDocumentToBeDeactivated(HostDocument* doc) override { add("to-be-deactivated", doc); }
  void onDocumentToBeActivated(HostDocument* doc) override { add("to-be-activated", doc); }
  void onDocumentBecameCurrent(HostDocument* doc) override {
    add("became-current", doc);
    EXPECT_EQ(hostServices()->currentDatabase(), doc->database());
  }
  void onDocumentClosing(HostDocument* doc) override {
    add("closing", doc);
    EXPECT_NE(doc->database(), nullptr) << "the drawing is still there while it closes";
  }
  void onDocumentClosed(const OdString& fileName) override {
    log.push_back("closed " + HostPaths::fileNameOf(fileName).toUtf8());
  }
  void onNoDocumentCurrent() override { log.push_back("none-current"); }
  void onSysVarChanged(HostDocument* doc, const OdString& name) override {
    add("sysvar " + name.toUtf8(), doc);
  }

  // The entries of the two operations the standards module follows.
  std::vector<std::string> currentAndClosing() const {
    std::vector<std::string> out;
    for (const auto& e : log)
      if (e.starts_with("became-current") || e.starts_with("closing")) out.push_back(e);
    return out;
  }
  std::vector<std::string> log;

 private:
  void add(const std::string& what, HostDocument* doc) {
    log.push_back(what + " " + doc->title().toUtf8());
  }
};

TEST(HostDocuments, ReactorSeesBecameCurrentAndClosingInOrder) {
  QuietHost q;
  auto a = hosttest::writeDrawing(q.dir.path() / "a.dxf");
  auto b = hosttest::writeDrawing(q.dir.path() / "b.dxf");
  DocLog log;
  hostDocManager()->addReactor(&log);

  HostDocument* docA = q.host.openDrawing(a);
  HostDocument* docB = q.host.openDrawing(b);
  ASSERT_TRUE(q.host.makeCurrent(docA));
  ASSERT_TRUE(q.host.closeDrawing(docA));
  EXPECT_EQ(q.host.currentDocument(), docB);
  ASSERT_TRUE(q.host.closeDrawing(docB));
  EXPECT_EQ(q.host.currentDocument(), nullptr);
  EXPECT_FALSE(q.host.closeDrawing(docB)) << "closed already";
  hostDocManager()->removeReactor(&log);

  EXPECT_EQ(log.currentAndClosing(),
            (std::vector<std::string>{"became-current a.dxf", "became-current b.dxf",
                                      "became-current a.dxf", "closing a.dxf",
                                      "became-current b.dxf", "closing b.dxf"}));
  // The whole sequence of the second open and of the last close.
  const std::vector<std::string> openB(log.log.begin() + 4, log.log.begin() + 9);
  EXPECT_EQ(openB, (std::vector<std::string>{"create-started b.dxf", "created b.dxf",
                                             "to-be-deactivated a.dxf", "to-be-activated b.dxf",
                                             "became-current b.dxf"}));
  const std::vector<std::string> lastClose(log.log.end() - 3, log.log.end());
  EXPECT_EQ(lastClose, (std::vector<std::string>{"closing b.dxf", "closed b.dxf", "none-current"}));
}

TEST(HostDocuments, OpeningTheSameFileTwiceSwitchesToIt) {
  QuietHost q;
  auto a = hosttest::writeDrawing(q.dir.path() / "a.dxf");
  auto b = hosttest::writeDrawing(q.dir.path() / "b.dxf");
  HostDocument* docA = q.host.openDrawing(a);
  q.host.openDrawing(b);
  EXPECT_EQ(q.host.openDrawing(q.dir.path() / "." / "a.dxf"), docA);
  EXPECT_EQ(q.host.currentDocument(), docA);
  EXPECT_EQ(q.host.app().documents().documentCount(), 2);
}

TEST(HostDocuments, CorpusDrawingsOpenAndABadOneOpensNothing) {
  auto files = testsupport::corpusDrawings();
  if (files.empty()) GTEST_SKIP() << "the drawing corpus (../shared/corpus) is absent";
  std::vector<std::filesystem::path> good, bad;
  for (const auto& f : files) (f.filename().string().starts_with("bad_") ? bad : good).push_back(f);
  ASSERT_FALSE(good.empty());

  QuietHost q;
  DocLog log;
  hostDocManager()->addReactor(&log);
  for (std::size_t i = 0; i < good.size() && i < 3; ++i) {
    HostDocument* doc = q.host.openDrawing(good[i]);
    EXPECT_NE(doc->database(), nullptr) << good[i];
  }
  HostDocument* current = q.host.currentDocument();
  int open = q.host.app().documents().documentCount();
  for (const auto& f : bad) {
    try {
      q.host.openDrawing(f);
      continue;  // the kernel may read some damaged files
    } catch (const OdError& e) {
      EXPECT_FALSE(std::string(e.what()).empty()) << f;
    }
    EXPECT_EQ(q.host.currentDocument(), current) << f;
    EXPECT_EQ(q.host.app().documents().documentCount(), open) << f;
    EXPECT_EQ(log.log.back(), "create-canceled " + f.filename().string());
    break;
  }
  hostDocManager()->removeReactor(&log);
}

TEST(HostSystemVariables, EachDocumentHasItsOwnStandardsViolation) {
  QuietHost q;
  HostServices* host = hostServices();
  EXPECT_TRUE(host->getSysVar(L"STANDARDSVIOLATION").isNull()) << "no document is open";
  OdResBufPtr one = OdResBuf::newRb(kHostRtInt32, 1);
  EXPECT_EQ(host->setSysVar(L"STANDARDSVIOLATION", one.get()), eNullPtr);

  HostDocument* a = q.host.openDrawing(hosttest::writeDrawing(q.dir.path() / "a.dxf"));
  HostDocument* b = q.host.openDrawing(hosttest::writeDrawing(q.dir.path() / "b.dxf"));
  OdResBufPtr value = host->getSysVar(L"STANDARDSVIOLATION");
  ASSERT_FALSE(value.isNull());
  EXPECT_EQ(value->restype(), 5010);
  EXPECT_EQ(value->getInt32(), 2) << "status-bar icon by default";

  DocLog log;
  hostDocManager()->addReactor(&log);
  EXPECT_EQ(host->setSysVar(L"StandardsViolation", one.get()), eOk);
  EXPECT_EQ(host->getSysVar(L"STANDARDSVIOLATION")->getInt32(), 1);
  q.host.makeCurrent(a);
  EXPECT_EQ(host->getSysVar(L"STANDARDSVIOLATION")->getInt32(), 2);
  EXPECT_EQ(b->sysVars().get(L"STANDARDSVIOLATION")->getInt32(), 1);
  hostDocManager()->removeReactor(&log);
  EXPECT_EQ(log.log.front(), "sysvar StandardsViolation b.dxf");

  OdResBufPtr text = OdResBuf::newRb(kHostRtString, L"1");
  EXPECT_EQ(host->setSysVar(L"STANDARDSVIOLATION", text.get()), eInvalidInput);
  OdResBufPtr three = OdResBuf::newRb(kHostRtInt32, 3);
  EXPECT_EQ(host->setSysVar(L"STANDARDSVIOLATION", three.get()), eInvalidInput);
  EXPECT_EQ(host->setSysVar(L"NOSUCHVAR", one.get()), eInvalidKey);
  EXPECT_EQ(host->setSysVar(L"DWGNAME", text.get()), eNotOpenForWrite);
  EXPECT_EQ(host->getSysVar(L"DWGNAME")->getString(), OdString(L"a.dxf"));
  EXPECT_TRUE(host->getSysVar(L"NOSUCHVAR").isNull());
}

}  // namespace
