#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ipc/application.h"
#include "ipc/methods.h"

// Opening outlines, whether the application runs or not. What opens answers with the application's outline
// summary and throws OpenError, or what the application's connection throws.
namespace vell::outlines {

struct OpenOptions {
  /// Seconds to wait for the outline, by a monotonic clock.
  double timeout = 5;
  /// Called every 100 ms while waiting, with the seconds waited; may throw, which ends the waiting.
  std::function<void(double)> onPoll = {};
  /// The application bundle to open with; without one, that which contains this executable.
  std::optional<std::string> bundle = {};
};

/// The open outline's summary; none where it is not open, the application refuses or does not run.
std::optional<ipc::Answer> findOpenOutline(ipc::Application& application,
                                           const ipc::OutlineFindByPath& where);
std::optional<ipc::Answer> findOpenOutline(ipc::Application& application,
                                           const ipc::OutlineFindByPersistentId& where);

/// Raises the outline's window.
void bringOutlineToFront(ipc::Application& application, const std::string& persistentId);

ipc::Answer openOutlineViaLaunchServices(ipc::Application& application, const std::string& absolutePath,
                                         const OpenOptions& options = {});

ipc::Answer openOutlineByPersistentId(ipc::Application& application, const std::string& persistentId,
                                      const OpenOptions& options = {});

/// Opens what a user names: "id:" and a persistent id, or a path.
ipc::Answer openOutline(ipc::Application& application, const std::string& target,
                        const OpenOptions& options = {});

/// The paths of the files that the system knows under a persistent id, as far as it tells them within so many
/// seconds.
std::vector<std::string> resolveFileURLs(const std::string& persistentId, double timeout = 5);

}  // namespace vell::outlines
