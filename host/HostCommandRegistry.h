#pragma once

#include <map>
#include <string>
#include <vector>

#include "OdString.h"
#include "UICmdProcess.h"

// Command flags given at registration.
enum HostCommandFlags : int {
  kHostCmdModal = 0,        // runs only when no other command runs
  kHostCmdTransparent = 1,  // may run while another command runs (within it)
};

// The commands known to the host, by name. Names are matched without regard to case and kept
// as registered. Not owned: creators are functions of the module that registered them, so a
// module must remove its commands before it is unloaded (the host also removes them when it
// unloads the module itself).
class HostCommandRegistry {
 public:
  struct Command {
    OdString name;
    OdString group;
    int flags = 0;
    UICmdCreator creator = nullptr;
  };

  // False when the name is empty, contains a blank, or is registered already, or the creator
  // is null.
  bool add(const OdString& name, const OdString& group, int flags, UICmdCreator creator);
  // False when there was no such command.
  bool remove(const OdString& name);
  // Removes the commands of a group (matched without regard to case); returns how many.
  int removeGroup(const OdString& group);
  // Removes the commands whose creator lies in the shared library file `path`; returns how
  // many.
  int removeFromFile(const OdString& path);

  // The command, or null. The pointer is valid until the registry changes.
  const Command* find(const OdString& name) const;
  // Registered names, in alphabetical order of their upper-case form.
  std::vector<OdString> names() const;

 private:
  static std::wstring keyOf(const OdString& name);
  std::map<std::wstring, Command> commands_;
};
