#pragma once

#include "cmdfrmwrk/ResultAnswerTrait.h"
#include "cmdfrmwrk/ResultTrait.h"
#include "cmdfrmwrk/XmlSerializer.h"
#include "lipsync/GetAudioTs.h"
#include "lipsync/LipSyncNtpTimestampsTrait.h"
#include "lipsync/SetAudioDelay.h"
#include "utilities/TypeList.h"
#include "utilities/serializer/Child.h"
#include "utilities/serializer/Convertor.h"
#include "utilities/serializer/TextTrait.h"

namespace velta::zub::lipsync {

inline constexpr char setAudioDelayAnswerTag[] = "SetAudioDelay_Answer";

struct SerializationTraitGetAudioTsRequest {
    using Type = GetAudioTs::Request;
    static constexpr const char* tag = "GetAudioTs_Request";
    using Children = utilities::detail::TypeNull;
};

struct SerializationTraitGetAudioTsAnswer {
    using Type = GetAudioTs::Answer;
    static constexpr const char* tag = "GetAudioTs_Answer";

    static common::LipSyncNtpTimestamps getTimestamps(const Type& answer) {
        return answer.timestamps;
    }
    static void setTimestamps(Type& answer, const common::LipSyncNtpTimestamps& timestamps) {
        answer.timestamps = timestamps;
    }

    using Children = utilities::TypeList<
        utilities::serializer::Child<LipSyncNtpTimestampsTrait, &getTimestamps, &setTimestamps>,
        utilities::TypeList<cmdfrmwrk::ResultChild::Type>>;
};

/// Requests are only written, so the child has no setter.
struct SerializationTraitSetAudioDelayRequest {
    using Type = SetAudioDelay::Request;
    static constexpr const char* tag = "SetAudioDelay_Request";

    static unsigned long getDelayMs(const Type& request) { return request.delayMs; }

    using DelayMs =
        utilities::serializer::TextTrait<unsigned long,
                                         utilities::serializer::Convertor<unsigned long>>;
    using Children =
        utilities::TypeList<utilities::serializer::Child<DelayMs, &getDelayMs, nullptr>>;
};

struct SerializationTraitSetAudioDelayAnswer
    : cmdfrmwrk::ResultAnswerTrait<&setAudioDelayAnswerTag> {
    using Type = SetAudioDelay::Answer;
};

/// All messages of the lip-sync commands.
using MessageTraits = utilities::TypeList<
    SerializationTraitGetAudioTsRequest,
    utilities::TypeList<
        SerializationTraitGetAudioTsAnswer,
        utilities::TypeList<SerializationTraitSetAudioDelayRequest,
                            utilities::TypeList<SerializationTraitSetAudioDelayAnswer>>>>;

using Serializer = cmdfrmwrk::XmlSerializer<MessageTraits>;

} // namespace velta::zub::lipsync
