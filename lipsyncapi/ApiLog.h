#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "utilities/log/Level.h"
#include "utilities/result/Digits.h"

namespace velta::zub::log {

/// Builds the log line of one API call: add the parameters and the result, then call `event`, which
/// writes the line. Keep it on the stack of that call. A parameter is text, a character or an
/// integer; any other type does not compile.
template <typename Logger>
class ApiLog {
public:
    template <typename T>
    ApiLog& addInput(std::string_view name, const T& value) {
        return addParam(name, value, _inputParams);
    }

    template <typename T>
    ApiLog& addOutput(std::string_view name, const T& value) {
        return addParam(name, value, _outputParams);
    }

    template <typename R>
    ApiLog& setResult(const R& result) {
        _result = result.format();
        return *this;
    }

    void event(std::string_view text) {
        typename Logger::Log::template Stream<utilities::details::Level::Info> line(Logger::tag);
        line << text;
        if (!_inputParams.empty()) {
            line << " with input params: " << _inputParams;
        }
        if (!_outputParams.empty()) {
            line << " with output params: " << _outputParams;
        }
        if (!_result.empty()) {
            line << " with result: " << _result;
        }
    }

private:
    template <typename T>
    ApiLog& addParam(std::string_view name, const T& value, std::string& params) {
        if constexpr (std::is_same_v<T, char>) {
            return addText(name, {&value, 1}, params);
        } else if constexpr (std::is_integral_v<T>) {
            return addText(name, utilities::result::Digits(value), params);
        } else {
            return addText(name, value, params);
        }
    }

    ApiLog& addText(std::string_view name, std::string_view value, std::string& params) {
        if (params.empty()) {
            params.reserve(usualLength);
        }
        (params += name) += '=';
        if (value.find('\n') == std::string_view::npos) {
            (params += value) += ' ';
        } else {
            ((params += "{\n") += value) += "}\n";
        }
        return *this;
    }

    // Enough for the longest usual list of parameters, so that the string need not grow.
    static constexpr std::size_t usualLength = 192;

    std::string _inputParams;
    std::string _outputParams;
    std::string _result;
};

} // namespace velta::zub::log
