#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vell::platform {

/// A program and its arguments.
using Command = std::vector<std::string>;

/// A program that the system is to keep running for this user, from login on.
struct Service {
  std::string description;
  Command command;  ///< its program is an absolute path
};

/// What the system's service manager wants to have for that.
struct ServiceSetup {
  std::string file;  ///< where the description belongs
  std::string text;  ///< the description
  std::vector<Command> afterWriting;
  /// What ends a service that runs with an earlier description, where `start` does not do that.
  std::optional<Command> endFormer;
  Command start;
  std::vector<Command> beforeRemoving;
  std::vector<Command> afterRemoving;
  Command status;
};

/// For this system's service manager.
ServiceSetup serviceSetup(const Service& service);

// The ones that there are.

/// A unit of the user's systemd.
ServiceSetup systemdSetup(const Service& service);
/// An agent of launchd.
ServiceSetup launchdSetup(const Service& service);

/// Runs a program, looked for as a shell does, with this process's streams. Returns its exit status; none
/// where there is no such program.
std::optional<int> runProgram(const Command& command);

}  // namespace vell::platform
