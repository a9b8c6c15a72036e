#pragma once

#include "lipsync/common/LipSyncNtpTimestamps.h"
#include "utilities/TypeList.h"
#include "utilities/serializer/Child.h"
#include "utilities/serializer/Convertor.h"
#include "utilities/serializer/NamedTextTrait.h"

namespace velta::zub::lipsync {

/// The timestamps as an XML element.
struct LipSyncNtpTimestampsTrait {
    using Type = common::LipSyncNtpTimestamps;

    // These names are fixed: capture, rendering and receiving time.
    struct Tags {
        static constexpr const char* tCap = "capture_timestamp";
        static constexpr const char* tRdr = "rendering_timestamp";
        static constexpr const char* tRcv = "receiving_timestamp";
        static constexpr const char* jbmDepth = "jitter_buffer_depth";
    };

    static constexpr const char* tag = "LipSyncNtpTimestamps";

    static Type initialValue() { return Type{}; }

    static unsigned long getTCap(const Type& record) { return record.audioCaptureTimestamp; }
    static void setTCap(Type& record, const unsigned long& value) {
        record.audioCaptureTimestamp = value;
    }

    static unsigned long getTRdr(const Type& record) { return record.audioRenderingTimestamp; }
    static void setTRdr(Type& record, const unsigned long& value) {
        record.audioRenderingTimestamp = value;
    }

    static unsigned long getTRcv(const Type& record) { return record.audioReceivingTimestamp; }
    static void setTRcv(Type& record, const unsigned long& value) {
        record.audioReceivingTimestamp = value;
    }

    static unsigned long getJbmDepth(const Type& record) { return record.jbmCurrentDepth; }
    static void setJbmDepth(Type& record, const unsigned long& value) {
        record.jbmCurrentDepth = value;
    }

    template <const char* const* name, auto getter, auto setter>
    using Field = utilities::serializer::Child<
        utilities::serializer::NamedTextTrait<unsigned long, name, false,
                                              utilities::serializer::Convertor<unsigned long>>,
        getter, setter>;

    using Children = utilities::TypeList<
        Field<&Tags::tCap, &getTCap, &setTCap>,
        utilities::TypeList<
            Field<&Tags::tRdr, &getTRdr, &setTRdr>,
            utilities::TypeList<
                Field<&Tags::tRcv, &getTRcv, &setTRcv>,
                utilities::TypeList<Field<&Tags::jbmDepth, &getJbmDepth, &setJbmDepth>>>>>;
};

} // namespace velta::zub::lipsync
