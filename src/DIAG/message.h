// One class per message, made from the rows of a .def table.
//
// A row DIAG_MSG(10008, elnk_nofile, ERROR, 0, "cannot find file \"%s\"") yields the class
// DIAG::elnk_nofile, whose constructor takes, behind the reporting site's file and line, one
// argument per conversion of the text: a string for %s, an integer for the others. The conversions
// are read at compile time, and a wrong argument does not compile. An integer wider than its
// conversion asks for is printed in full.
#pragma once

#include "DIAG/diagnostic.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace DIAG {

/// What a conversion takes.
enum class CONVERSION { STRING, INTEGER, INVALID };

struct CONVERSIONS {
    static constexpr unsigned MAX = 12;
    std::array<CONVERSION, MAX> kind{};
    unsigned count = 0;
    bool valid = true;
};

/// Appends the conversions of a printf-style text, in order.
constexpr void add_conversions(CONVERSIONS& found, std::string_view text) {
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != '%') continue;
        if (i + 1 < text.size() && text[i + 1] == '%') {
            i++;
            continue;
        }
        i = text.find_first_not_of("-+ #0123456789.", i + 1);
        if (i != text.npos) i = text.find_first_not_of("hlzjt", i);
        CONVERSION kind = CONVERSION::INVALID;
        if (i != text.npos && text[i] == 's')
            kind = CONVERSION::STRING;
        else if (i != text.npos &&
                 std::string_view("diuxXoc").find(text[i]) != std::string_view::npos)
            kind = CONVERSION::INTEGER;
        if (kind == CONVERSION::INVALID || found.count == CONVERSIONS::MAX) {
            found.valid = false;
            return;
        }
        found.kind[found.count++] = kind;
    }
}

/// The conversions of a message: those of its text, then those of its verbose text.
constexpr CONVERSIONS conversions(std::string_view text, std::string_view verbose) {
    CONVERSIONS found;
    add_conversions(found, text);
    add_conversions(found, verbose);
    return found;
}

template <class T>
concept STRING_ARGUMENT =
    std::convertible_to<const T&, std::string_view> || std::convertible_to<const T&, const char*>;
template <class T>
concept INTEGER_ARGUMENT = (std::is_integral_v<T> || std::is_enum_v<T>)&&!std::is_same_v<T, bool>;

/// True if arguments of the types A are what the text of a row asks for.
template <class ROWS, unsigned ROW, class... A>
constexpr bool takes() {
    constexpr CONVERSIONS wanted = conversions(ROWS::texts[ROW], ROWS::verbose_texts[ROW]);
    if (!wanted.valid || wanted.count != sizeof...(A)) return false;
    unsigned i = 0;
    return ((wanted.kind[i++] == CONVERSION::STRING ? STRING_ARGUMENT<std::decay_t<A>>
                                                    : INTEGER_ARGUMENT<std::decay_t<A>>)&&...);
}

/// A kept argument.
struct ARGUMENT {
    std::string text;
    uint64_t number = 0;
    bool wide = false; ///< the number's type has 64 bits

    template <class T>
    explicit ARGUMENT(const T& value) {
        if constexpr (std::is_convertible_v<const T&, const char*>) {
            const char* chars = value;
            text = chars != nullptr ? chars : "";
        } else if constexpr (STRING_ARGUMENT<T>) {
            text = std::string_view(value);
        } else {
            number = static_cast<uint64_t>(value);
            wide = sizeof(T) > 4;
        }
    }
};

/// The text with its conversions replaced by the arguments.
std::string format_message(const char* text, const std::vector<ARGUMENT>& arguments);

/// What all generated messages share.
class MESSAGE_BASE : public DIAGNOSTIC {
  public:
    int report() override;
    /// The message's text alone, without header and wrapping.
    std::string text() const { return format_message(info()->std_msg, arguments_); }

  protected:
    template <class... A>
    MESSAGE_BASE(DIAG_INFO* info, const char* file, unsigned line, const A&... arguments)
        : DIAGNOSTIC(info, file, line) {
        arguments_.reserve(sizeof...(A));
        (arguments_.emplace_back(arguments), ...);
    }
    MESSAGE_BASE(const MESSAGE_BASE&) = default;

  private:
    std::vector<ARGUMENT> arguments_;
};

/// The class of row ROW of a component's table.
template <class ROWS, unsigned ROW>
class MESSAGE final : public MESSAGE_BASE {
  public:
    template <class... A>
    requires(takes<ROWS, ROW, A...>())
        MESSAGE(const char* file, unsigned line, const A&... arguments)
        : MESSAGE_BASE(ROWS::first + ROW, file, line, arguments...) {}
    MESSAGE(const MESSAGE&) = default;

    DIAGNOSTIC* alloc() const override { return new MESSAGE(*this); }
    static DIAG_INFO* row() { return ROWS::first + ROW; }
};

/// Reports a message at a position, which may be null.
inline int report_at(const DIAG_SRCINFO* position, DIAGNOSTIC&& message) {
    message.set_src(position);
    return message.report();
}

} // namespace DIAG

/// Reports the message `id` with its arguments.
#define DIAG_REPORT(id, ...) DIAG_REPORT_AT(nullptr, id __VA_OPT__(, ) __VA_ARGS__)

/// Reports the message `id` at a user position (const DIAG_SRCINFO*, null for none).
#define DIAG_REPORT_AT(position, id, ...)                                                          \
    ::DIAG::report_at((position), ::DIAG::id(__FILE__, __LINE__ __VA_OPT__(, ) __VA_ARGS__))
