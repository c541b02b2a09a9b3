#pragma once

#include <string>
#include <vector>

#include "ipc/application.h"
#include "ipc/client_error.h"
#include "ipc/outline_summary.h"

// What people call an outline: where the application knows no outline with the id that `--outline` gives, the
// display name or the path of an open outline is taken instead.
namespace vell::cli {

/// The open outlines; none where the application does not tell.
std::vector<ipc::OutlineSummary> openOutlines(ipc::Application& application);

/// The persistent id of the one open outline that has that display name or that file, after the application
/// has refused `reference`. Asks for the open outlines, and changes nothing. Throws `refusal` where it is not
/// about an unknown outline, and an error that helps further where no outline is meant or several may be.
std::string namedOutline(const std::string& reference, ipc::Application& application,
                         const ipc::ClientError& refusal);

/// Sends one of the params records with `send`, and a second time where the outline is named otherwise than
/// by its id: the application refuses a request about an unknown outline before it changes anything.
template <class Record, class Send>
auto sendNaming(Record record, ipc::Application& application, Send send) {
  if constexpr (requires { record.outline; }) {
    if (record.outline) {
      try {
        return send(record);
      } catch (const ipc::ClientError& refusal) {
        record.outline = namedOutline(*record.outline, application, refusal);
      }
    }
  }
  return send(record);
}

}  // namespace vell::cli
