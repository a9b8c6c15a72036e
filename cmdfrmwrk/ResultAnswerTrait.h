#pragma once

#include "cmdfrmwrk/Command.h"
#include "cmdfrmwrk/ResultTrait.h"
#include "utilities/TypeList.h"
#include "utilities/serializer/Child.h"

namespace velta::zub::cmdfrmwrk {

/// The child that every answer has: the engine's verdict.
struct ResultChild {
    static Command::Result getResult(const Command::Answer& answer) { return answer.result; }
    static void setResult(Command::Answer& answer, const Command::Result& result) {
        answer.result = result;
    }

    using Type = utilities::serializer::Child<ResultTrait<Command::Result>, &getResult, &setResult>;
};

/// An answer that carries a verdict and nothing else, in an element named by a character array.
template <const auto* elementName>
struct ResultAnswerTrait {
    static constexpr const char* tag = *elementName;
    using Children = utilities::TypeList<ResultChild::Type>;
};

} // namespace velta::zub::cmdfrmwrk
