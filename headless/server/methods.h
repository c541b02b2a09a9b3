#pragma once

#include <string>

#include "headless/server/method.h"

/// One function a method, declared here for the table; docs/protocol.md has their params and results.
namespace vell::headless::methods {

std::string applicationOpen(const Call& call);

std::string outlineList(const Call& call);
std::string outlineGet(const Call& call);
std::string outlineFindByPath(const Call& call);
std::string outlineFindByPersistentId(const Call& call);
std::string outlineBringToFront(const Call& call);

std::string outlineNew(const Call& call);
std::string outlineNewContent(const Call& call);
std::string outlineClose(const Call& call);

std::string rowCreate(const Call& call);
std::string rowCreateMany(const Call& call);
std::string rowUpdate(const Call& call);
std::string rowMove(const Call& call);
std::string rowDelete(const Call& call);

std::string editorList(const Call& call);
std::string editorGet(const Call& call);
std::string editorUpdate(const Call& call);

std::string outlineObserve(const Call& call);
std::string documentsObserve(const Call& call);

std::string commandList(const Call& call);
std::string commandPerform(const Call& call);

std::string scriptEvaluate(const Call& call);

}  // namespace vell::headless::methods
