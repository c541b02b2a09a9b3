#include <algorithm>
#include <array>

#include "headless/commands/actions.h"
#include "headless/commands/command.h"

namespace vell::headless {
namespace {

// clang-format off
constexpr std::array table = {
    Command{"edit:redo",                    actions::redo},
    Command{"edit:undo",                    actions::undo},
    Command{"focus:home",                   actions::focusHome},
    Command{"focus:in",                     actions::focusIn},
    Command{"focus:out",                    actions::focusOut},
    Command{"fold:collapse",                actions::collapse},
    Command{"fold:collapse-all",            actions::collapseAll},
    Command{"fold:collapse-completely",     actions::collapseBelow},
    Command{"fold:expand",                  actions::expand},
    Command{"fold:expand-all",              actions::expandAll},
    Command{"fold:expand-completely",       actions::expandBelow},
    Command{"fold:toggle",                  actions::toggleFold},
    Command{"format:body",                  actions::format<RowType::body>},
    Command{"format:clear-styles",          actions::clearStyles},
    Command{"format:code",                  actions::format<RowType::code>},
    Command{"format:heading",               actions::format<RowType::heading>},
    Command{"format:hr",                    actions::format<RowType::hr>},
    Command{"format:note",                  actions::format<RowType::note>},
    Command{"format:ordered",               actions::format<RowType::ordered>},
    Command{"format:quote",                 actions::format<RowType::quote>},
    Command{"format:task",                  actions::format<RowType::task>},
    Command{"format:toggle-bold",           actions::toggleStrong},
    Command{"format:toggle-highlight",      actions::toggleMark},
    Command{"format:toggle-inline-code",    actions::toggleCode},
    Command{"format:toggle-italic",         actions::toggleEm},
    Command{"format:toggle-strikethrough",  actions::toggleStrikethrough},
    Command{"format:unordered",             actions::format<RowType::unordered>},
    Command{"row:block-move-down",          actions::moveDown},
    Command{"row:block-move-to-bottom",     actions::moveToBottom},
    Command{"row:block-move-to-top",        actions::moveToTop},
    Command{"row:block-move-up",            actions::moveUp},
    Command{"row:delete",                   actions::deleteSelected},
    Command{"row:duplicate",                actions::duplicate},
    Command{"row:group",                    actions::group},
    Command{"row:indent",                   actions::indent},
    Command{"row:insert-above",             actions::insertAbove},
    Command{"row:insert-below",             actions::insertBelow},
    Command{"row:insert-child",             actions::insertChild},
    Command{"row:join-with-next",           actions::joinWithNext},
    Command{"row:outdent",                  actions::outdent},
    Command{"row:reverse-children",         actions::reverse},
    Command{"row:sort-children-ascending",  actions::sortAscending},
    Command{"row:sort-children-descending", actions::sortDescending},
    Command{"row:toggle-done",              actions::toggleDone},
    Command{"row:ungroup",                  actions::ungroup},
    Command{"selection:all",                actions::selectAll},
    Command{"selection:branch",             actions::selectBranch},
    Command{"selection:down",               actions::selectDown},
    Command{"selection:extend-down",        actions::extendDown},
    Command{"selection:extend-up",          actions::extendUp},
    Command{"selection:first",              actions::selectFirst},
    Command{"selection:first-child",        actions::selectFirstChild},
    Command{"selection:last",               actions::selectLast},
    Command{"selection:next-sibling",       actions::selectNextSibling},
    Command{"selection:parent",             actions::selectParent},
    Command{"selection:previous-sibling",   actions::selectPreviousSibling},
    Command{"selection:up",                 actions::selectUp},
};
// clang-format on

constexpr bool byId(const Command& a, const Command& b) { return a.id < b.id; }
static_assert(std::is_sorted(table.begin(), table.end(), byId));

}  // namespace

std::span<const Command> commands() { return table; }

const Command* findCommand(std::string_view id) {
  const auto found = std::lower_bound(table.begin(), table.end(), Command{id, nullptr}, byId);
  return found != table.end() && found->id == id ? &*found : nullptr;
}

}  // namespace vell::headless
