#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>

/// The names in documents.
namespace azubsim::names {

using List = std::initializer_list<const char*>;

inline constexpr const char* getAudioTs = "GetAudioTs";
inline constexpr const char* setAudioDelay = "SetAudioDelay";

/// All commands. The elements of requests and answers add an ending.
inline constexpr List commands = {getAudioTs, setAudioDelay};
inline constexpr const char* requestEnding = "_Request";
inline constexpr const char* answerEnding = "_Answer";

inline constexpr const char* root = "AZUB";
inline constexpr const char* version = "version";
inline constexpr const char* currentVersion = "0.1.0";
inline constexpr const char* timestamps = "LipSyncNtpTimestamps";
inline constexpr const char* capture = "capture_timestamp";
inline constexpr const char* rendering = "rendering_timestamp";
inline constexpr const char* receiving = "receiving_timestamp";
inline constexpr const char* jitterDepth = "jitter_buffer_depth";
inline constexpr const char* result = "Result";
inline constexpr const char* code = "ErrorCode";
inline constexpr const char* message = "Message";

/// The elements inside an answer.
inline constexpr List inAnswers = {timestamps,  capture, rendering, receiving,
                                   jitterDepth, result,  code,      message};

inline bool contains(List names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

inline std::string joined(List names, const std::string& separator) {
    std::string all;
    for (const char* const name : names) {
        all += (all.empty() ? "" : separator) + name;
    }
    return all;
}

} // namespace azubsim::names
