#pragma once

#include <string>

namespace azubsim {

/// What a message is about.
enum class Kind { GetAudioTs, SetAudioDelay, Other };

/// The names of the commands. The elements of requests and answers add an ending.
struct CommandName {
    Kind kind;
    const char* name;
};
inline constexpr CommandName commandNames[] = {{Kind::GetAudioTs, "GetAudioTs"},
                                               {Kind::SetAudioDelay, "SetAudioDelay"}};

inline std::string nameOf(Kind kind) {
    for (const CommandName& command : commandNames) {
        if (command.kind == kind) {
            return command.name;
        }
    }
    return "";
}

inline Kind kindOf(const std::string& name) {
    for (const CommandName& command : commandNames) {
        if (name == command.name) {
            return command.kind;
        }
    }
    return Kind::Other;
}

/// The other names in documents.
namespace names {

inline constexpr const char* root = "AZUB";
inline constexpr const char* version = "version";
inline constexpr const char* currentVersion = "0.1.0";
inline constexpr const char* requestEnding = "_Request";
inline constexpr const char* answerEnding = "_Answer";
inline constexpr const char* timestamps = "LipSyncNtpTimestamps";
inline constexpr const char* capture = "capture_timestamp";
inline constexpr const char* rendering = "rendering_timestamp";
inline constexpr const char* receiving = "receiving_timestamp";
inline constexpr const char* jitterDepth = "jitter_buffer_depth";
inline constexpr const char* result = "Result";
inline constexpr const char* code = "ErrorCode";
inline constexpr const char* message = "Message";

/// The elements inside an answer.
inline constexpr const char* inAnswers[] = {timestamps,  capture, rendering, receiving,
                                            jitterDepth, result,  code,      message};

} // namespace names

} // namespace azubsim
