#include "OdTempFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

namespace {

enum SlotState : int { kFree = 0, kFilling = 1, kFile = 2, kFolder = 3 };

struct Slot {
  std::atomic<int> state{kFree};
  char path[OdTempFiles::kPathBytes];
};

Slot g_slots[OdTempFiles::kSlots];

// Empties a folder of its files with raw system calls (opendir may allocate, which a signal
// handler must not).
void emptyFolder(const char* path) noexcept {
  int fd = ::open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0) return;
  alignas(8) char buffer[4096];
  for (;;) {
    long n = ::syscall(SYS_getdents64, fd, buffer, sizeof buffer);
    if (n <= 0) break;
    for (long at = 0; at < n;) {
      auto* entry = reinterpret_cast<struct dirent64*>(buffer + at);
      const char* name = entry->d_name;
      if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) ::unlinkat(fd, name, 0);
      at += entry->d_reclen;
    }
  }
  ::close(fd);
}

}  // namespace

int OdTempFiles::add(const std::string& path, bool folder) noexcept {
  if (path.empty() || path.size() >= kPathBytes) return -1;
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (!g_slots[i].state.compare_exchange_strong(expected, kFilling)) continue;
    std::memcpy(g_slots[i].path, path.c_str(), path.size() + 1);
    g_slots[i].state.store(folder ? kFolder : kFile);
    return i;
  }
  return -1;
}

void OdTempFiles::forget(int entry) noexcept {
  if (entry >= 0 && entry < kSlots) g_slots[entry].state.store(kFree);
}

void OdTempFiles::removeAllNow() noexcept {
  for (Slot& slot : g_slots)
    if (slot.state.load() == kFile) ::unlink(slot.path);
  for (Slot& slot : g_slots) {
    if (slot.state.load() != kFolder) continue;
    emptyFolder(slot.path);
    ::rmdir(slot.path);
  }
}
