#include "HostCommandRegistry.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

std::wstring HostCommandRegistry::keyOf(const OdString& name) {
  OdString upper = name;
  return upper.makeUpper().str();
}

bool HostCommandRegistry::add(const OdString& name, const OdString& group, int flags,
                              UICmdCreator creator) {
  if (name.isEmpty() || !creator) return false;
  for (wchar_t c : name.str())
    if (c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'"') return false;
  return commands_.emplace(keyOf(name), Command{name, group, flags, creator}).second;
}

bool HostCommandRegistry::remove(const OdString& name) {
  return commands_.erase(keyOf(name)) > 0;
}

int HostCommandRegistry::removeGroup(const OdString& group) {
  return static_cast<int>(std::erase_if(
      commands_, [&](const auto& entry) { return entry.second.group.iCompare(group) == 0; }));
}

int HostCommandRegistry::removeFromFile(const OdString& path) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::path target = fs::weakly_canonical(fs::path(path.toUtf8()), ec);
  return static_cast<int>(std::erase_if(commands_, [&](const auto& entry) {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(entry.second.creator), &info) || !info.dli_fname)
      return false;
    std::error_code ec2;
    return fs::weakly_canonical(fs::path(info.dli_fname), ec2) == target;
  }));
}

const HostCommandRegistry::Command* HostCommandRegistry::find(const OdString& name) const {
  auto it = commands_.find(keyOf(name));
  return it == commands_.end() ? nullptr : &it->second;
}

std::vector<OdString> HostCommandRegistry::names() const {
  std::vector<OdString> out;
  for (const auto& [key, command] : commands_) out.push_back(command.name);
  return out;
}
