#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "utilities/TypeList.h"
#include "utilities/log/AndroidLogTrait.h"
#include "utilities/log/Level.h"
#include "utilities/log/StdIoLogTrait.h"
#include "utilities/result/Digits.h"

namespace velta::utilities {

/// Passes every record to each log trait of a type list, last trait first. Stateless; any thread.
/// Output errors are ignored, so that logging never affects the caller.
template <typename Traits>
class GenericLog;

template <>
class GenericLog<detail::TypeNull> {
public:
    template <details::Level::Enum level>
    static void valog(const char*, const char*, va_list) {}
};

template <typename Head, typename Tail>
class GenericLog<TypeList<Head, Tail>> {
public:
    /// Writes one record; `format` and `args` are as for `vprintf`.
    template <details::Level::Enum level>
    [[gnu::format(printf, 2, 0)]] static void valog(const char* tag, const char* format,
                                                    va_list args) {
        va_list tailArgs;
        va_copy(tailArgs, args);
        GenericLog<Tail>::template valog<level>(tag, format, tailArgs);
        va_end(tailArgs);
        Head::template valog<level>(tag, format, args);
    }

    /// Collects the text of one record and writes it in the destructor, unless it is empty. If
    /// memory runs out, the record is lost and the caller does not notice.
    template <details::Level::Enum level>
    class Stream {
    public:
        /// `tag` must outlive the stream.
        explicit Stream(const char* tag) : _tag(tag) {}

        ~Stream() {
            if (!_isLost && !_text.empty()) {
                log("%s", _text.c_str());
            }
        }

        Stream(const Stream&) = delete;
        Stream& operator=(const Stream&) = delete;

        Stream& operator<<(std::string_view text) noexcept {
            try {
                if (_text.empty()) {
                    _text.reserve(usualLength);
                }
                _text += text;
            } catch (...) {
                _isLost = true;
            }
            return *this;
        }

        /// A `char` is written as a character, any other integer in digits.
        template <typename Integer, std::enable_if_t<std::is_integral<Integer>::value, int> = 0>
        Stream& operator<<(Integer number) noexcept {
            if constexpr (std::is_same_v<Integer, char>) {
                return *this << std::string_view(&number, 1);
            } else {
                return *this << std::string_view(result::Digits(number));
            }
        }

        [[gnu::format(printf, 2, 3)]] void log(const char* format, ...) {
            va_list args;
            va_start(args, format);
            valog<level>(_tag, format, args);
            va_end(args);
        }

    private:
        static constexpr std::size_t usualLength = 256;

        const char* _tag;
        std::string _text;
        bool _isLost = false;
    };
};

/// The log of this library: the Android log first, then standard error. On Linux the Android log
/// goes to standard error too, so each line appears twice.
using StandardLog = GenericLog<TypeList<StdIoLogTrait, TypeList<AndroidLogTrait<false>>>>;

} // namespace velta::utilities
