#pragma once

#include <functional>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

namespace Nq {

/// Kinds of report. The numbers are the print types that a sink receives.
enum PrintType : unsigned {
    PrintReadTrouble = 3, ///< trouble that a collection's reading survives
    PrintFailure = 4,     ///< the ordinary failure report
    PrintMismatch = 5     ///< mismatching editable values
};

/// Where all messages of the library go. By default they go to standard error; setSink() takes them
/// elsewhere.
///
/// Calls from several threads don't interleave within a line.
class Print {
public:
    using Sink = std::function<void(unsigned printType, const std::string& text)>;

    /// A stream whose text goes out as one piece when the stream ends.
    class Stream : public std::ostringstream {
    public:
        Stream(Print& print, unsigned printType, const char* functionSignature);
        Stream(Stream&&) = delete;
        ~Stream() override;

    private:
        Print& m_Print;
        unsigned m_PrintType;
    };

    static Print& instance();

    /// Replaces where lines go. An empty function restores standard error. The old sink doesn't run any more
    /// when this returns, unless it is itself the caller.
    void setSink(Sink sink);

    /// Formats in the manner of printf, but by the type of each argument: "%d" shows a text argument as that
    /// text. Flags, width and precision apply to numbers; "%%" is a per cent sign; an argument that is
    /// missing shows as its own conversion, one too many is left out.
    template <typename... Arguments>
    void write(unsigned printType, std::string_view format, const Arguments&... arguments) {
        emit(printType, formatted(format, {Argument(arguments)...}));
    }

    /// A stream that the caller appends to; the text starts with the signature of the calling function.
    Stream ostream(unsigned printType, const char* functionSignature);

private:
    /// One argument of write(), by kind.
    struct Argument {
        enum class Kind { Signed, Unsigned, Real, Text };

        template <typename T>
        explicit Argument(const T& value) {
            if constexpr (std::is_floating_point_v<T>) {
                kind = Kind::Real;
                real = static_cast<double>(value);
            } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
                kind = Kind::Signed;
                integer = static_cast<long long>(value);
            } else if constexpr (std::is_integral_v<T>) {
                kind = Kind::Unsigned;
                natural = static_cast<unsigned long long>(value);
            } else if constexpr (std::is_convertible_v<const T&, const char*>) {
                const char* start = value;
                text = start ? std::string_view(start) : std::string_view("(null)");
            } else {
                text = static_cast<const std::string&>(value);
            }
        }

        Kind kind = Kind::Text;
        long long integer = 0;
        unsigned long long natural = 0;
        double real = 0.0;
        std::string_view text;
    };

    Print() = default;
    static std::string formatted(std::string_view format, std::initializer_list<Argument> arguments);
    static void append(std::string& out, std::string_view conversion, const Argument& argument);
    void emit(unsigned printType, const std::string& text);

    struct State;
    static State& state();
};

} // namespace Nq
