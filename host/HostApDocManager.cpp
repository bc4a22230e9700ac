#include "HostApDocManager.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <system_error>

#include "HostApDocManagerReactor.h"
#include "HostPaths.h"
#include "OdError.h"

namespace fs = std::filesystem;

namespace {
OdString canonicalText(const OdString& path) {
  std::error_code ec;
  // Absolute first: a file name alone that does not exist yet stays relative otherwise.
  fs::path canonical = fs::weakly_canonical(fs::absolute(HostPaths::toPath(path), ec), ec);
  return ec ? path : OdString::fromUtf8(canonical.string());
}
}  // namespace

HostApDocManager::HostApDocManager(std::function<void(const OdString&)> report)
    : report_(std::move(report)) {}

HostApDocManager::~HostApDocManager() = default;

template <class Call>
void HostApDocManager::notify(Call call) {
  std::vector<HostApDocManagerReactor*> reactors = reactors_;
  for (HostApDocManagerReactor* reactor : reactors) {
    if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) continue;
    try {
      call(reactor);
    } catch (const std::exception& e) {
      if (report_) report_(OdString(L"a document reactor failed: ") + OdString::fromUtf8(e.what()));
    } catch (...) {
      if (report_) report_(L"a document reactor failed");
    }
  }
}

bool HostApDocManager::isOpenHere(const HostDocument* doc) const {
  return doc && std::any_of(docs_.begin(), docs_.end(),
                            [doc](const HostDocumentPtr& d) { return d.get() == doc; });
}

HostDocument* HostApDocManager::openDocument(const OdString& path) {
  OdString fileName = canonicalText(path);
  for (const HostDocumentPtr& doc : docs_) {
    if (doc->fileName() == fileName) {
      setCurDocument(doc.get());
      return doc.get();
    }
  }
  HostDocumentPtr doc = OdRxObjectImpl<HostDocument>::createObject(fileName);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentCreateStarted(doc.get()); });
  try {
    // The state before reading: a change made while it is read counts as someone else's.
    std::optional<OdFileStamp> stamp = OdFileStamp::ofTarget(HostPaths::toPath(fileName));
    doc->setDatabase(OdDbDatabase::readFile(HostPaths::toPath(fileName)));
    doc->stamp_ = stamp;
  } catch (const OdError& e) {
    notify([&](HostApDocManagerReactor* r) {
      r->onDocumentCreateCanceled(doc.get(), e.description());
    });
    throw;
  }
  docs_.push_back(doc);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentCreated(doc.get()); });
  // A reactor may have closed it already.
  if (isOpenHere(doc.get())) setCurDocument(doc.get());
  return doc.get();
}

HostDocument* HostApDocManager::newDocument() {
  OdString fileName;
  for (int n = 1;; ++n) {
    fileName = OdString::format("Drawing%d.dxf", n);
    if (std::none_of(docs_.begin(), docs_.end(), [&](const HostDocumentPtr& d) {
          return d->isUntitled() && d->fileName() == fileName;
        }))
      break;
  }
  HostDocumentPtr doc = OdRxObjectImpl<HostDocument>::createObject(fileName);
  doc->setUntitled(true);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentCreateStarted(doc.get()); });
  doc->setDatabase(OdDbDatabase::createEmpty());
  docs_.push_back(doc);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentCreated(doc.get()); });
  if (isOpenHere(doc.get())) setCurDocument(doc.get());
  return doc.get();
}

void HostApDocManager::activate(HostDocument* doc) {
  if (current_) {
    HostDocument* old = current_;
    notify([&](HostApDocManagerReactor* r) { r->onDocumentToBeDeactivated(old); });
  }
  notify([&](HostApDocManagerReactor* r) { r->onDocumentToBeActivated(doc); });
  current_ = doc;
  std::erase(activationOrder_, doc);
  activationOrder_.push_back(doc);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentBecameCurrent(doc); });
}

bool HostApDocManager::setCurDocument(HostDocument* doc) {
  if (!isOpenHere(doc)) return false;
  if (doc != current_) activate(doc);
  return true;
}

bool HostApDocManager::closeDocument(HostDocument* doc, bool force) {
  // A reactor that closes the document it is being told about gets false.
  if (!isOpenHere(doc) || std::find(closing_.begin(), closing_.end(), doc) != closing_.end())
    return false;
  if (!force) {
    OdResult veto = eOk;
    notify([&](HostApDocManagerReactor* r) { r->onCloseVeto(doc, veto); });
    if (veto != eOk) return false;
  }
  // Keep the document alive through its own closing.
  HostDocumentPtr keep(doc);
  closing_.push_back(doc);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentClosing(doc); });
  std::erase(closing_, doc);
  std::erase_if(docs_, [doc](const HostDocumentPtr& d) { return d.get() == doc; });
  std::erase(activationOrder_, doc);
  bool wasCurrent = current_ == doc;
  if (wasCurrent) current_ = nullptr;
  doc->setDatabase(nullptr);
  const OdString fileName = doc->fileName();
  notify([&](HostApDocManagerReactor* r) { r->onDocumentClosed(fileName); });
  if (wasCurrent && !current_) {
    if (!activationOrder_.empty()) {
      activate(activationOrder_.back());
    } else if (docs_.empty()) {
      notify([&](HostApDocManagerReactor* r) { r->onNoDocumentCurrent(); });
    }
  }
  return true;
}

void HostApDocManager::closeAll() {
  while (!docs_.empty()) {
    // Others first, so that closing does not make each of them current in turn.
    HostDocument* next = docs_.front().get();
    for (const HostDocumentPtr& d : docs_)
      if (d.get() != current_) {
        next = d.get();
        break;
      }
    closeDocument(next, true);
  }
}

void HostApDocManager::saveDocument(HostDocument* doc, const OdString& path,
                                    const OdAtomicFile::Options& options,
                                    std::optional<bool> binary) {
  if (!isOpenHere(doc)) throw OdError(eInvalidInput, "the document to save is not open");
  if (path.isEmpty() && doc->isUntitled())
    throw OdError(eInvalidInput, "the new drawing " + doc->title().toUtf8() +
                                     " has no file yet; save it under a name");
  OdString target = path.isEmpty() ? doc->fileName() : canonicalText(path);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentSaving(doc); });
  try {
    doc->database()->writeFile(HostPaths::toPath(target), binary, options);
  } catch (const OdError& e) {
    notify([&](HostApDocManagerReactor* r) { r->onDocumentSaveFailed(doc, e.description()); });
    throw;
  }
  doc->markSaved(target);
  notify([&](HostApDocManagerReactor* r) { r->onDocumentSaved(doc); });
  if (target != doc->fileName()) {
    OdString old = doc->fileName();
    doc->setFileName(target);
    notify([&](HostApDocManagerReactor* r) { r->onDocumentRenamed(doc, old); });
  }
}

OdResult HostApDocManager::setSysVar(HostDocument* doc, const OdString& name, const OdResBuf* value,
                                     OdString* error) {
  if (!isOpenHere(doc)) {
    if (error) *error = L"no document is open";
    return eNullPtr;
  }
  OdResult result = doc->sysVars().set(name, value, error);
  if (result == eOk) notify([&](HostApDocManagerReactor* r) { r->onSysVarChanged(doc, name); });
  return result;
}

std::vector<HostDocument*> HostApDocManager::documents() const {
  std::vector<HostDocument*> out;
  for (const HostDocumentPtr& d : docs_) out.push_back(d.get());
  return out;
}

HostDocument* HostApDocManager::documentOf(const OdDbDatabase* db) const {
  if (!db) return nullptr;
  for (const HostDocumentPtr& d : docs_)
    if (d->database() == db) return d.get();
  return nullptr;
}

void HostApDocManager::addReactor(HostApDocManagerReactor* reactor) {
  if (reactor && std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end())
    reactors_.push_back(reactor);
}

void HostApDocManager::removeReactor(HostApDocManagerReactor* reactor) {
  std::erase(reactors_, reactor);
}
