#pragma once

#include "storage/packedcolor.h"

#include <cstdint>
#include <stdexcept>

// Types that the chart's core model and its widget share; this header needs Qt Core only.
namespace trendax {

// An operation on a variable outside 0 to 12, or an array that is not 2 x N, reports its failure
// to the caller with this exception and changes nothing.
class ChartError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace trendax
