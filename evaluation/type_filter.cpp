#include "evaluation/type_filter.h"

namespace vell::evaluation {
namespace {

using outline_path::TypeTest;

RowType typeOf(TypeTest test) {
  switch (test) {
    case TypeTest::heading:
      return RowType::heading;
    case TypeTest::quote:
      return RowType::quote;
    case TypeTest::code:
      return RowType::code;
    case TypeTest::note:
      return RowType::note;
    case TypeTest::unordered:
      return RowType::unordered;
    case TypeTest::ordered:
      return RowType::ordered;
    case TypeTest::task:
      return RowType::task;
    case TypeTest::hr:
      return RowType::hr;
    case TypeTest::body:
      return RowType::body;
    case TypeTest::any:
    case TypeTest::row:
    case TypeTest::run:
      break;
  }
  // No row is a run, and the root is on no axis.
  return RowType::root;
}

}  // namespace

TypeFilter::TypeFilter(TypeTest test)
    : any_(test == TypeTest::any || test == TypeTest::row), type_(typeOf(test)) {}

}  // namespace vell::evaluation
