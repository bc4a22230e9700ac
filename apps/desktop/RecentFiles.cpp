#include "RecentFiles.h"

#include "HostConfigTree.h"

namespace {
const char* const kKey = "Desktop";
const char* const kValue = "RecentFiles";
}  // namespace

QStringList RecentFiles::files() const {
  auto value = tree_.getValue({kKey}, kValue);
  if (!value || value->varType() != OdVariant::kString) return {};
  QStringList files =
      QString::fromStdString(value->getString().toUtf8()).split('\n', Qt::SkipEmptyParts);
  files.removeDuplicates();
  while (files.size() > kMaxFiles) files.removeLast();
  return files;
}

void RecentFiles::add(const QString& path) {
  QStringList list = files();
  list.removeAll(path);
  list.prepend(path);
  while (list.size() > kMaxFiles) list.removeLast();
  write(list);
}

void RecentFiles::remove(const QString& path) {
  QStringList list = files();
  if (list.removeAll(path) > 0) write(list);
}

void RecentFiles::write(const QStringList& files) {
  tree_.createKey({}, kKey);
  tree_.setValue({kKey}, kValue, OdVariant(OdString::fromUtf8(files.join('\n').toStdString())));
}
