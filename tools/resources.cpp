#include "tools/resources.h"

#include <optional>
#include <stdexcept>
#include <variant>

#include "ipc/methods.h"
#include "ipc/outline_summary.h"
#include "outlines/opening.h"
#include "tools/answer_limit.h"

namespace vell::tools {

namespace {

constexpr const char* currentOutlineURI = "vell://current-outline";
constexpr const char* markdownType = "text/markdown";
constexpr const char* fileDescription =
    "A `.vell` outline on disk, addressed by its absolute path (percent-encoded into a single URI segment). "
    "Reading the resource auto-launches Vell and opens the file if it isn't already open, then returns the "
    "body as Vell-flavored markdown.";
constexpr const char* unsavedDescription =
    "An unsaved outline currently open in Vell, addressed by its persistent id. Saved outlines use the "
    "`vell://file/{path}` template instead. Reads require the outline to still be open.";
constexpr const char* currentDescription =
    "The outline whose editor is frontmost in Vell right now. Content reflects the live frontmost at read "
    "time. Errors if Vell isn't running or no outline is open.";

void answer(const mcp::ResourceReadPtr& read, const Outcome& outcome) {
  if (const auto* failure = std::get_if<std::exception_ptr>(&outcome)) return read->fail(textOf(*failure));
  const auto& answer = std::get<ipc::Answer>(outcome);
  auto markdown = answer.result().string();
  if (!markdown) return read->fail("Vell did not send the outline as text");
  if (const auto why = refusal(*markdown, answer)) return read->fail(*why);
  read->answer({.uri = read->uri(), .mimeType = markdownType, .text = std::move(*markdown)});
}

/// Without a persistent id the frontmost outline is read.
void readOutlineMarkdown(const Services& services, const std::optional<std::string>& persistentId,
                         const mcp::ResourceReadPtr& read) {
  ipc::OutlineGet record;
  record.format = "markdown";
  record.outline = persistentId;
  const auto ticket =
      services.application.call(record, [read](const Outcome& outcome) { answer(read, outcome); });
  read->request().onCancelled([&application = services.application, ticket] { application.cancel(ticket); });
}

void readOpened(const Services& services, const mcp::ResourceReadPtr& read, const Outcome& outcome) {
  if (const auto* failure = std::get_if<std::exception_ptr>(&outcome)) return read->fail(textOf(*failure));
  try {
    const auto summary = ipc::decodeOutlineSummary(std::get<ipc::Answer>(outcome).result());
    readOutlineMarkdown(services, summary.persistentId, read);
  } catch (const ipc::ShapeError& error) {
    read->fail(error.what());
  }
}

/// The value of a template's variable, which a URI may leave empty.
std::string variable(const mcp::ResourceReadPtr& read, const std::string& name) {
  if (auto value = read->variable(name)) return std::move(*value);
  throw std::invalid_argument("Missing " + name + " in URI: " + read->uri());
}

/// Answers the read with the file's outline; opens it, and the application, where need be.
void readFile(const Services& services, const std::string& path, const mcp::ResourceReadPtr& read) {
  if (path.find('\0') != std::string::npos) throw std::invalid_argument("A path holds no NUL character");
  if (path.rfind('/', 0) != 0) throw std::invalid_argument("The path is not absolute: " + path);
  const auto open = [path](ipc::Application& application, const outlines::OpenOptions& options) {
    return outlines::openOutlineViaLaunchServices(application, path, options);
  };
  const auto onDone = [services, read](const Outcome& outcome) { readOpened(services, read, outcome); };
  const auto onWait = [read](double waited, double timeout) {
    read->request().reportProgress(waited, timeout, "Waiting for Vell to open the outline");
  };
  const auto ticket = services.openings.start(open, {onDone, onWait});
  read->request().onCancelled([&openings = services.openings, ticket] { openings.cancel(ticket); });
}

void registerOpenOutline(mcp::MCPServer& server, const Services& services,
                         const outlines::OutlineResource& outline) {
  const std::string where = outline.path
                                ? "Open in Vell; saved at " + *outline.path
                                : "Open in Vell; not saved yet, persistent id " + outline.persistentId;
  const auto read = [services, outline](const mcp::ResourceReadPtr& each) {
    outline.path ? readFile(services, *outline.path, each)
                 : readOutlineMarkdown(services, outline.persistentId, each);
  };
  server.registerResource(outline.uri, {.name = outline.name, .description = where, .mimeType = markdownType},
                          read);
}

}  // namespace

void registerResources(mcp::MCPServer& server, const Services& services) {
  server.registerResourceTemplate(
      "vell://file/{path}",
      {.name = "vell_outline_file", .description = fileDescription, .mimeType = markdownType},
      [services](const auto& read) { readFile(services, variable(read, "path"), read); });
  server.registerResourceTemplate(
      "vell://outline/{persistentId}",
      {.name = "vell_outline_unsaved", .description = unsavedDescription, .mimeType = markdownType},
      [services](const auto& read) { readOutlineMarkdown(services, variable(read, "persistentId"), read); });
  server.registerResource(
      currentOutlineURI,
      {.name = "Current Outline", .description = currentDescription, .mimeType = markdownType},
      [services](const auto& read) { readOutlineMarkdown(services, std::nullopt, read); });
}

void applyChanges(mcp::MCPServer& server, const Services& services, const outlines::OutlineChanges& changes) {
  {
    const mcp::ChangeNotice::Batch batch(server.resourceRegistry().notice());
    for (const std::string& uri : changes.removedURIs) server.resourceRegistry().remove(uri);
    for (const auto& outline : changes.added) registerOpenOutline(server, services, outline);
  }
  if (changes.frontmost) server.sendResourceUpdated(currentOutlineURI);
}

}  // namespace vell::tools
