#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

/// Takes values from the bytes of a fuzzer one after the other; behind their end all of them are 0.
class NqFuzzInput {
public:
    explicit NqFuzzInput(std::string_view bytes) : m_Bytes(bytes) {}

    bool isEmpty() const { return m_Bytes.empty(); }
    std::string_view rest() const { return m_Bytes; }

    std::uint8_t byte() { return take<std::uint8_t>(); }
    bool flag() { return byte() % 2 == 1; }
    /// 0 to `end` - 1.
    unsigned below(std::size_t end) { return static_cast<unsigned>(byte() % end); }

    /// An ordinary number: a small one, or a share of 1.
    double sane() {
        const auto drawn = take<std::int16_t>();
        return drawn % 2 == 0 ? drawn / 65536.0 : drawn / 4096.0;
    }
    double positive() { return std::fabs(sane()) + 0.001; }
    /// Any number at all, the special ones more often than they would come by themselves.
    double any() {
        constexpr double most = std::numeric_limits<double>::max();
        constexpr double least = std::numeric_limits<double>::denorm_min();
        constexpr double infinite = std::numeric_limits<double>::infinity();
        constexpr double special[] = {0.0,  -0.0,  1.0,   -1.0,     infinite, -infinite, NAN,
                                      most, -most, least, 1.0e-300, 1.0e300,  1.0e-155,  1.0e155};
        const unsigned which = below(2 * std::size(special));
        return which < std::size(special) ? special[which] : which % 2 == 0 ? sane() : take<double>();
    }
    double number(bool isSane) { return isSane ? sane() : any(); }
    std::vector<double> numbers(std::size_t count, bool isSane) {
        std::vector<double> taken(count);
        std::ranges::generate(taken, [&] { return number(isSane); });
        return taken;
    }

    NqReArray matrix(unsigned rows, unsigned columns, bool isSane) {
        NqReArray taken(rows, columns);
        for (unsigned i = 0; i < rows; ++i) {
            taken[i] = numbers(columns, isSane);
        }
        return taken;
    }
    NqVector vector(bool isSane) {
        const std::vector<double> taken = numbers(3, isSane);
        return {taken[0], taken[1], taken[2]};
    }
    NqOrientation turn(bool isSane) {
        const double angle = number(isSane);
        return {angle, vector(isSane)};
    }
    NqCoordinateSystemTransformation frame(bool isSane) {
        const NqVector translation = vector(isSane);
        return {translation, turn(isSane)};
    }

    /// Up to the next line end.
    std::string line() {
        const std::size_t end = m_Bytes.find('\n');
        const std::string taken(m_Bytes.substr(0, end));
        m_Bytes.remove_prefix(end == std::string_view::npos ? m_Bytes.size() : end + 1);
        return taken;
    }

private:
    template <typename T>
    T take() {
        char bytes[sizeof(T)] = {};
        const std::size_t count = m_Bytes.copy(bytes, sizeof(T));
        m_Bytes.remove_prefix(count);
        return std::bit_cast<T>(bytes);
    }

    std::string_view m_Bytes;
};
