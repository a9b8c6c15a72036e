#include "tools/azubsim/engine/Fault.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "tools/azubsim/protocol/Messages.h"
#include "tools/azubsim/protocol/Names.h"
#include "tools/common/Error.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using Action = Fault::Action;
using tools::Error;
using tools::parseInteger;
using tools::require;
using tools::Words;

// Checks the argument of a fault. Throws an `Error` if it is wrong.
using Parse = std::function<Action(const std::string& argument)>;

// For a fault without an argument.
Parse plain(const Action& action) {
    return [action](const std::string&) { return action; };
}

// Sends these bytes at once, then closes the connection.
Reply last(const std::string& bytes) {
    return {{{noWait, bytes}}, true};
}

std::string firstHalf(const std::string& answer) {
    return answer.substr(0, answer.size() / 2);
}

// One write per byte, far enough apart that the client reads each byte separately.
Reply split(const std::string& answer, std::mt19937&) {
    Reply reply;
    for (const char byte : answer + endMarker) {
        reply.pieces.push_back({std::chrono::microseconds(100), std::string(1, byte)});
    }
    return reply;
}

// Delivers the answer after a change to its root element. One that is far too long or too deep for
// an engine's stays as it is: changing it could take minutes, or all of the stack.
Action edited(const std::function<void(pugi::xml_node root)>& change) {
    return [change](const std::string& answer, std::mt19937&) {
        pugi::xml_document document;
        const bool isXml =
            answer.size() <= 65536 && document.load_buffer(answer.data(), answer.size());
        if (isXml) {
            change(document.document_element());
        }
        return deliver(isXml ? print(document) : answer);
    };
}

// Changes the elements inside the root that an XPath step selects, inner ones first, because a
// change of an outer one can remove them.
void forEach(pugi::xml_node root, const std::string& step,
             const std::function<void(pugi::xml_node element)>& change) {
    pugi::xpath_node_set elements = root.select_nodes((".//" + step).c_str());
    elements.sort(true);
    for (const pugi::xpath_node& element : elements) {
        change(element.node());
    }
}

void setTexts(pugi::xml_node root, const std::string& step, const std::string& text) {
    forEach(root, step, [&text](pugi::xml_node element) {
        element.remove_children();
        if (!text.empty()) {
            element.text() = text.c_str();
        }
    });
}

Action error(const std::string& argument) {
    const Words words(argument);
    const auto code = parseInteger<int>(words.first);
    if (!code) {
        throw Error("error code '" + words.first + "' is not a signed 32-bit decimal number");
    }
    return edited([code = std::to_string(*code), message = words.rest](pugi::xml_node root) {
        setTexts(root, names::code, code);
        setTexts(root, names::message, message);
    });
}

Action version(const std::string& text) {
    return edited([text](auto root) { root.attribute(names::version) = text.c_str(); });
}

Action element(const std::string& name) {
    return edited([name](auto root) { root.first_child().set_name(name.c_str()); });
}

Action missing(const std::string& name) {
    require(names::contains(names::inAnswers, name),
            "unknown element '" + name + "'; answers have " + names::joined(names::inAnswers, " "));
    return edited([name](auto root) {
        forEach(root, name, [](auto element) { element.parent().remove_child(element); });
    });
}

Action number(const std::string& text) {
    const std::string step = std::string("*[not(*) and name() != '") + names::message + "']";
    return edited([step, text](auto root) { setTexts(root, step, text); });
}

Action delay(const std::string& argument) {
    constexpr int maxMs = 3600000;
    const Words words(argument);
    const int ms = parseInteger<int>(words.first).value_or(-1);
    const int spread = words.rest.empty() ? 0 : parseInteger<int>(words.rest).value_or(-1);
    require(ms >= 0 && ms <= maxMs && spread >= 0 && spread <= ms,
            "delay '" + argument + "' is not a number of ms from 0 to " + std::to_string(maxMs) +
                ", and a spread of at most that number");
    return [ms, spread](const std::string& answer, std::mt19937& random) {
        // A remainder, because distributions differ between standard libraries.
        const auto drawn = static_cast<int>(random() % static_cast<std::uint32_t>(2 * spread + 1));
        return Reply{{{std::chrono::milliseconds(ms - spread + drawn), answer + endMarker}}};
    };
}

Action flood(const std::string& argument) {
    constexpr int usual = 16777216;
    constexpr int most = 268435456;
    const int size = argument.empty() ? usual : parseInteger<int>(argument).value_or(0);
    require(size >= 1 && size <= most,
            "flood '" + argument + "' is not a number of bytes from 1 to " + std::to_string(most));
    return [size](auto&, auto&) { return last(std::string(static_cast<std::size_t>(size), 'x')); };
}

struct Entry {
    const char* name;
    const char* argument; // Its placeholder; empty if there is none, in brackets if optional.
    const char* effect;
    Parse parse;
};

// All faults, in the order of the help.
const Entry allFaults[] = {
    {"error", "CODE [MESSAGE]", "answer with this error code and message", error},
    {"version", "TEXT", "set the version of the document to TEXT", version},
    {"element", "NAME", "rename the command element to NAME", element},
    {"missing", "NAME", "leave out every element called NAME", missing},
    {"number", "TEXT", "replace every number with TEXT", number},
    {"cut", "", "send half of the document, then the end marker",
     plain([](auto& answer, auto&) { return deliver(firstHalf(answer)); })},
    {"close-before", "", "close the connection without an answer", plain([](auto&, auto&) {
         return Reply{{}, true};
     })},
    {"close-middle", "", "close the connection after half of the document",
     plain([](auto& answer, auto&) { return last(firstHalf(answer)); })},
    {"split", "", "send each byte in a separate write", plain(split)},
    {"double", "", "send the answer twice in one write",
     plain([](auto& answer, auto&) { return deliver(answer + endMarker + answer); })},
    {"zero", "", "insert a zero byte in the middle of the document",
     plain([](auto answer, auto&) { return deliver(answer.insert(answer.size() / 2, 1, '\0')); })},
    {"silence", "", "send no answer and keep the connection open",
     plain([](auto&, auto&) { return Reply(); })},
    {"delay", "MS [SPREAD]", "send the answer MS ms late, plus or minus SPREAD ms", delay},
    {"flood", "[BYTES]", "send bytes without an end marker, then close", flood},
};

} // namespace

std::string Fault::table() {
    std::string table;
    for (const Entry& fault : allFaults) {
        const std::string usage = std::string(fault.name) + ' ' + fault.argument;
        table += tools::printed("  %-22s%s\n", usage.c_str(), fault.effect);
    }
    return table;
}

Fault::Fault(const std::string& text) : _text(text) {
    const Words words(text);
    const auto* const fault =
        std::find_if(std::begin(allFaults), std::end(allFaults),
                     [&](const Entry& entry) { return words.first == entry.name; });
    require(fault != std::end(allFaults), "unknown fault '" + words.first + "'");
    const std::string placeholder = fault->argument;
    require(!placeholder.empty() || words.rest.empty(),
            "fault '" + words.first + "' takes no argument, but got '" + words.rest + "'");
    require(!words.rest.empty() || placeholder.empty() || placeholder[0] == '[',
            "fault '" + words.first + "' needs an argument: " + placeholder);
    _action = fault->parse(words.rest);
}

Reply deliver(const std::string& answer) {
    return {{{noWait, answer + endMarker}}};
}

} // namespace azubsim
