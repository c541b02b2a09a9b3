#include "headless/editing/problem.h"
#include "headless/script/script_process.h"
#include "headless/server/answers.h"
#include "headless/server/dispatch.h"
#include "headless/server/methods.h"

namespace vell::headless::methods {
namespace {

/// Gives a script the methods that a client has, and besides the neighbours of a row and saving.
class Host : public ScriptHost {
 public:
  explicit Host(Application& application) : application_(application) {}

  std::string call(const std::string& method, const std::string& text) override {
    const json::Document document{std::string_view(text)};
    const Params params(document.root());
    const Call call{application_, params, nullptr, group_};
    if (method == "script.parent") return carryOut(parent, Use::reading, call);
    if (method == "script.children") return carryOut(children, Use::reading, call);
    if (method == "script.save") return carryOut(save, Use::changing, call);
    return carryOut(method, call);
  }

  void log(const std::string& line) override { application_.report("script: " + line); }

 private:
  static const Row& row(const Call& call) {
    OpenOutline& opened = call.application.outline(call.params.string("outline"));
    return opened.refs().row(*call.params.stringOrInteger("row"));
  }

  static std::string parent(const Call& call) {
    const Row* parent = row(call).parent();
    return parent == nullptr || parent->parent() == nullptr ? "null" : rowAnswer(*parent);
  }

  static std::string children(const Call& call) { return rowsAnswer(childrenOf(row(call))); }

  static std::string save(const Call& call) {
    OpenOutline& opened = call.application.outline(call.params.string("outline"));
    call.application.saveAs(opened, call.params.requiredString("path"));
    return summary(opened);
  }

  static History::Group newGroup() {
    static History::Group last = History::noGroup;
    return ++last;
  }

  Application& application_;
  const History::Group group_ = newGroup();  ///< all changes to an outline are one undo step
};

}  // namespace

std::string scriptEvaluate(const Call& call) {
  const Script script{call.params.requiredString("script"), call.params.string("input")};
  const ApplicationSettings& settings = call.application.settings();
  Host host(call.application);
  try {
    return runScript(settings.scriptProgram, script, settings.version, host);
  } catch (const ScriptError& error) {
    throw Problem(error.what());
  }
}

}  // namespace vell::headless::methods
