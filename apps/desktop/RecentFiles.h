#pragma once

#include <QStringList>

class HostConfigTree;

// The drawings opened last, newest first, kept in the host's configuration tree (key
// "Desktop", value "RecentFiles": the paths joined by line breaks) so that they survive the
// program. At most kMaxFiles; a path opened again moves to the front.
class RecentFiles {
 public:
  static constexpr int kMaxFiles = 10;

  // `tree` is not owned and must outlive this object.
  explicit RecentFiles(HostConfigTree& tree) : tree_(tree) {}

  // The list as stored; paths that are empty are left out.
  QStringList files() const;
  // Puts `path` (absolute) at the front and writes the list.
  void add(const QString& path);
  // Takes `path` out (a file that is gone) and writes the list.
  void remove(const QString& path);

 private:
  void write(const QStringList& files);
  HostConfigTree& tree_;
};
