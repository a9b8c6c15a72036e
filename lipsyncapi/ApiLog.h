#pragma once

#include <locale>
#include <sstream>
#include <string>

#include "utilities/log/Level.h"

namespace velta::zub::log {

/// The one log line of one API call: feed it the parameters and the result, then name the event,
/// which writes the line. Lives on the stack of that call.
template <typename Logger>
class ApiLog {
public:
    ApiLog() {
        _inputParams.imbue(std::locale::classic());
        _outputParams.imbue(std::locale::classic());
    }

    template <typename T>
    ApiLog& addInput(const std::string& name, const T& value) {
        return addParam(name, value, _inputParams);
    }

    template <typename T>
    ApiLog& addOutput(const std::string& name, const T& value) {
        return addParam(name, value, _outputParams);
    }

    /// A result of any domain.
    template <typename R>
    ApiLog& setResult(const R& result) {
        _result = result.format();
        return *this;
    }

    void event(const std::string& text) {
        typename Logger::Log::template Stream<utilities::details::Level::Info> line(Logger::tag);
        line << text;
        appendParams(line, " with input params: ", _inputParams);
        appendParams(line, " with output params: ", _outputParams);
        if (!_result.empty()) {
            line << " with result: " << _result;
        }
    }

private:
    // A value of several lines stands in braces.
    template <typename T>
    ApiLog& addParam(const std::string& name, const T& value, std::stringstream& params) {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value;
        const std::string text = stream.str();
        if (text.find('\n') == std::string::npos) {
            params << name << '=' << text << ' ';
        } else {
            params << name << "={\n" << text << "}\n";
        }
        return *this;
    }

    static void appendParams(std::ostream& line, const char* title,
                             const std::stringstream& params) {
        const std::string text = params.str();
        if (!text.empty()) {
            line << title << text;
        }
    }

    std::stringstream _inputParams;
    std::stringstream _outputParams;
    std::string _result;
};

} // namespace velta::zub::log
