#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/math/NqGeneralMotion.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

/// Numbers at random that are the same with every standard library.
class NqDraws {
public:
    explicit NqDraws(std::uint64_t seed) : m_Random(seed) {}

    double within(double least, double greatest) {
        return least + (greatest - least) * std::ldexp(static_cast<double>(m_Random() >> 11), -53);
    }
    unsigned below(unsigned end) { return static_cast<unsigned>(m_Random() % end); }

    NqVector vector(double size = 1.0) {
        const double x = within(-size, size);
        const double y = within(-size, size);
        return {x, y, within(-size, size)};
    }
    NqOrientation orientation() {
        const double angle = within(-3.0, 3.0);
        return {angle, vector()};
    }
    NqCoordinateSystemTransformation frame() {
        const NqVector translation = vector();
        return {translation, orientation()};
    }
    NqGeneralMotion motion(double size = 1.0) {
        const NqVector linear = vector(size);
        return {linear, vector(size)};
    }
    std::vector<double> values(std::size_t count, double size = 1.0) {
        std::vector<double> drawn(count);
        for (double& value : drawn) {
            value = within(-size, size);
        }
        return drawn;
    }

private:
    std::mt19937_64 m_Random;
};
