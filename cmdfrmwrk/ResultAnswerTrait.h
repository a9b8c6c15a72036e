#pragma once

#include "cmdfrmwrk/ResultTrait.h"
#include "utilities/TypeList.h"

namespace velta::zub::cmdfrmwrk {

/// An answer that carries a verdict and nothing else, in an element named by a character array.
template <const auto* elementName>
struct ResultAnswerTrait {
    static constexpr const char* tag = *elementName;
    using Children = utilities::TypeList<ResultChild::Type>;
};

} // namespace velta::zub::cmdfrmwrk
