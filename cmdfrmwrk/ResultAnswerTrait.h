#pragma once

#include "cmdfrmwrk/ResultTrait.h"
#include "utilities/TypeList.h"

namespace velta::zub::cmdfrmwrk {

/// An answer that holds only a verdict. `elementName` points to the name of its element.
template <const auto* elementName>
struct ResultAnswerTrait {
    static constexpr const char* tag = *elementName;
    using Children = utilities::TypeList<ResultChild::Type>;
};

} // namespace velta::zub::cmdfrmwrk
