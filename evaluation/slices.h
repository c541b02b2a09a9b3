#pragma once

#include "evaluation/axes.h"
#include "outline_path/expression.h"

namespace vell::evaluation {

/// The part of `count` candidates that a slice takes.
Range sliceRange(const outline_path::Slice& slice, std::size_t count);
inline constexpr std::size_t allCandidates = static_cast<std::size_t>(-1);
/// How many candidates have to be known before the slice is: all where it counts from the end.
std::size_t candidatesNeeded(const outline_path::Slice& slice);

/// Whether the candidates from one context along `axis` can be among those from many others, so that going
/// through them for each context anew could take the square of their number.
bool sharesCandidates(outline_path::Axis axis);
/// The slices of `candidates` from each context, where the axis shares them: for each context its candidates
/// are found as ranges of a sorted list, so that the whole takes little more than one pass. `candidates`
/// are those from all contexts, in document order.
Rows slicesFromEach(outline_path::Axis axis, const Rows& contexts, Rows candidates,
                    const outline_path::Slice& slice, const Outline& outline, Work& work);

}  // namespace vell::evaluation
