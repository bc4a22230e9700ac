#pragma once

// A command that a module adds to the host (see ICmdFactory).
//
// The host makes a new command object through the registered creator each time the command
// runs, calls execute() once on its one thread, and then deletes the object through this
// interface; so a command keeps no state between runs unless it keeps it elsewhere.
class UICmdProcess {
 public:
  virtual ~UICmdProcess() = default;
  // Runs the command. The result is handed to whoever ran the command by name (the
  // command line ignores it). Exceptions are caught by the host, which reports them on the
  // command line and goes on with the next command.
  virtual bool execute() = 0;
};

// Makes a command object, owned by the caller (the host); null when it cannot.
using UICmdCreator = UICmdProcess* (*)();

// The creator of a command class that has a default constructor.
template <class Command>
UICmdProcess* createCommand() {
  return new Command();
}
