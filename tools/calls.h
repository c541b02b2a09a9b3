#pragma once

#include <exception>
#include <string>

#include "mcp/tool.h"
#include "tools/openings.h"
#include "tools/vell_ipc.h"

/// The two ways in which a tool gets its answer from the application.
namespace vell::tools {

/// What tools and resources work with.
struct Services {
  VellIPC& application;
  Openings& openings;
};

/// What a call answers where the application does not run: an error, or an empty list.
enum class WhenNotRunning { error, emptyList };

/// The failure's description, cut where it is too large for a message.
std::string textOf(const std::exception_ptr& failure);

/// Answers with the result of one method of the application, or with an error where it is too large for a
/// message; cancelling ends the call.
void forward(const Services& services, std::string method, std::string params, const mcp::ToolCallPtr& call,
             WhenNotRunning whenNotRunning = WhenNotRunning::error);

/// The same for one of the records of ipc/methods.h.
template <class Record>
void forward(const Services& services, const Record& record, const mcp::ToolCallPtr& call,
             WhenNotRunning whenNotRunning = WhenNotRunning::error) {
  forward(services, Record::method, record.toJson(), call, whenNotRunning);
}

/// Answers with the summary of the outline that the work opens; reports progress while it waits.
void open(const Services& services, Openings::Work work, const mcp::ToolCallPtr& call);

}  // namespace vell::tools
