#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <mutex>

namespace Nq {

namespace {

constexpr std::string_view kFlagsWidthPrecision = "-+ #0123456789.";
constexpr std::string_view kLengthModifiers = "hljztL";

} // namespace

struct Print::State {
    /// Held while a line goes out and while the sink changes, so that no sink runs once it has been replaced.
    /// A sink may itself print or set a sink.
    std::recursive_mutex mutex;
    std::shared_ptr<const Sink> sink;
};

Print::State& Print::state() {
    static auto& theState = *new State; // static objects may print as late as they go
    return theState;
}

Print::Stream::Stream(Print& print, unsigned printType, const char* functionSignature)
    : m_Print(print), m_PrintType(printType) {
    *this << functionSignature;
}

Print::Stream::~Stream() {
    m_Print.emit(m_PrintType, str());
}

Print& Print::instance() {
    static Print thePrint;
    return thePrint;
}

void Print::setSink(Sink sink) {
    auto replacement = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    const std::scoped_lock lock(state().mutex);
    state().sink.swap(replacement);
}

Print::Stream Print::ostream(unsigned printType, const char* functionSignature) {
    return Stream(*this, printType, functionSignature);
}

void Print::emit(unsigned printType, const std::string& text) {
    const std::scoped_lock lock(state().mutex);
    if (const std::shared_ptr<const Sink> sink =
            state().sink) { // kept while it runs, even if it replaces itself
        (*sink)(printType, text);
    } else {
        std::fwrite(text.data(), 1, text.size(), stderr);
    }
}

std::string Print::formatted(std::string_view format, std::initializer_list<Argument> arguments) {
    std::string out;
    const Argument* argument = arguments.begin();
    for (std::size_t i = 0; i < format.size();) {
        if (format[i] != '%') {
            out += format[i++];
            continue;
        }
        std::size_t end = format.find_first_not_of(kFlagsWidthPrecision, i + 1);
        end = end == std::string_view::npos ? end : format.find_first_not_of(kLengthModifiers, end);
        if (end == std::string_view::npos) {
            out += format.substr(i);
            break;
        }
        if (format[end] == '%') {
            out += '%';
        } else if (argument != arguments.end()) {
            append(out, format.substr(i, end + 1 - i), *argument++);
        } else {
            out += format.substr(i, end + 1 - i);
        }
        i = end + 1;
    }
    return out;
}

void Print::append(std::string& out, std::string_view conversion, const Argument& argument) {
    if (argument.kind == Argument::Kind::Text) {
        out += argument.text;
        return;
    }
    // Keep flags, width and precision; the length modifier and the conversion follow the argument's type.
    const std::size_t body = conversion.find_first_not_of(kFlagsWidthPrecision, 1);
    std::string format(conversion.substr(0, body));
    const char letter = conversion.back();
    const bool isInteger = argument.kind != Argument::Kind::Real;
    const bool fits =
        isInteger ? (letter == 'x' || letter == 'X' || letter == 'o')
                  : (letter == 'f' || letter == 'e' || letter == 'g' || letter == 'E' || letter == 'G');
    if (isInteger) {
        format += "ll";
        format += fits ? letter : (argument.kind == Argument::Kind::Signed ? 'd' : 'u');
    } else {
        format += fits ? letter : 'g';
    }
    char buffer[400];
    int length = 0;
    switch (argument.kind) {
    case Argument::Kind::Signed:
        length = std::snprintf(buffer, sizeof buffer, format.c_str(), argument.integer);
        break;
    case Argument::Kind::Unsigned:
        length = std::snprintf(buffer, sizeof buffer, format.c_str(), argument.natural);
        break;
    default:
        length = std::snprintf(buffer, sizeof buffer, format.c_str(), argument.real);
        break;
    }
    if (length > 0) {
        out.append(buffer, std::min(static_cast<std::size_t>(length), sizeof buffer - 1));
    }
}

} // namespace Nq
