// Logs calls with arbitrary text and compares each line with the expected one. Zero bytes split the
// input into a socket name, the text of a result and an event.

#include <cstdarg>
#include <string>

#include "fuzz/Check.h"
#include "lipsyncapi/ApiLog.h"
#include "lipsyncapi/Service.h"
#include "utilities/log/GenericLog.h"

namespace {

using velta::utilities::GenericLog;
using velta::utilities::TypeList;
using velta::utilities::details::Level;
using velta::zub::lipsyncapi::Service;

struct Records {
    template <Level::Enum level>
    [[gnu::format(printf, 2, 0)]] static void valog(const char*, const char* format, va_list args) {
        char* text = nullptr;
        fuzz::check(vasprintf(&text, format, args) >= 0, "the record can be formatted");
        last = text;
        std::free(text);
        ++count;
    }

    static std::string last;
    static int count;
};

std::string Records::last;
int Records::count = 0;

struct Logger {
    using Log = GenericLog<TypeList<Records>>;
    static constexpr const char* tag = "AZUBLIPSYNCAPI";
};

std::string cutAtZero(std::string& text) {
    const std::string head = text.substr(0, text.find('\0'));
    text.erase(0, head.size() + 1);
    return head;
}

std::string expectedLine(const std::string& event, const std::string& name,
                         const Service::Result& result, int number) {
    const bool hasLines = name.find('\n') != std::string::npos;
    return event + " with input params: lipsyncSocketName=" +
           (hasLines ? "{\n" + name + "}\n" : name + ' ') +
           " with output params: number=" + std::to_string(number) +
           " mark=m  with result: " + result.format();
}

} // namespace

int fuzzApiLog(const std::uint8_t* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    const std::string name = cutAtZero(input);
    Service::Result result(static_cast<Service::ResultCode>(1000 + name.size() % 9));
    result << cutAtZero(input);
    const std::string event = cutAtZero(input);

    const int number = -static_cast<int>(size);

    Records::count = 0;
    velta::zub::log::ApiLog<Logger>()
        .addInput("lipsyncSocketName", name)
        .addOutput("number", number)
        .addOutput("mark", 'm')
        .setResult(result)
        .event(event);
    fuzz::check(Records::count == 1, "a call logs one line");
    fuzz::check(Records::last == expectedLine(event, name, result, number),
                "the line is the expected one");
    return 0;
}
