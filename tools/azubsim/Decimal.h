#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace azubsim {

/// Parses the whole text as a decimal number, for example "-0.5".
inline bool parseDecimal(const std::string& text, double& number) {
    // strtod also accepts white space, hexadecimal numbers and names such as "nan".
    if (text.empty() || text.find_first_not_of("-.0123456789") != std::string::npos) {
        return false;
    }
    char* rest = nullptr;
    // The sum turns -0 into 0.
    number = std::strtod(text.c_str(), &rest) + 0.0;
    return *rest == '\0';
}

/// Without zeros at the end: "50", "-0.5".
inline std::string formatDecimal(double number) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.10g", number);
    return text;
}

} // namespace azubsim
