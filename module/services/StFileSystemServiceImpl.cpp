#include "StFileSystemServiceImpl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

#include "HostDateFormat.h"
#include "HostEntryPoints.h"
#include "HostPaths.h"
#include "HostServices.h"
#include "StStringTable.h"

namespace st {

namespace {

const wchar_t* const kDatePicture = L"d MMMM yyyy";

bool fileExists(const OdString& path) {
  HostServices* host = hostServices();
  return host ? host->fileExists(path) : HostPaths::fileExists(path);
}

// The last-modified date of a file that can be opened for reading; empty otherwise.
OdString lastModifiedDate(const OdString& path) {
  // O_NONBLOCK: opening a FIFO for reading would wait for a writer.
  int fd = ::open(path.toUtf8().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return OdString();
  struct stat info {};
  bool known = ::fstat(fd, &info) == 0;
  ::close(fd);
  if (!known) return OdString();
  auto when = std::chrono::system_clock::time_point(
      std::chrono::duration_cast<std::chrono::system_clock::duration>(
          std::chrono::seconds(info.st_mtim.tv_sec) +
          std::chrono::nanoseconds(info.st_mtim.tv_nsec)));
  return HostDateFormat::format(when, kDatePicture);
}

}  // namespace

StFileInfo StFileSystemServiceImpl::getFileInfo(const OdString& path) {
  StFileInfo info;
  info.path = path;
  if (fileExists(path)) {
    info.lastModified = lastModifiedDate(path);
  } else {
    info.path += stLoadString(kStrFileNotFound);
    info.exists = false;
  }
  return info;
}

}  // namespace st
