#pragma once

#include "document/outline.h"

/// The names of a document that this room uses without their namespace.
namespace vell::headless {

using document::Attribute;
using document::Attributes;
using document::Outline;
using document::Row;
using document::RowType;
using document::Run;
using document::SessionId;
using document::Text;
using document::Timestamp;

}  // namespace vell::headless
