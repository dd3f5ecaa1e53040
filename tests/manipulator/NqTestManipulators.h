#pragma once

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

/// The manipulator of a description in the project's models or, for those not there, in the tests' own.
inline NqIndividualManipulator nqTestManipulator(const std::string& name) {
    NqIndividualManipulator manipulator;
    const std::string folder = name == "branched" ? NQ_TEST_MODELS : NQ_MODELS;
    EXPECT_TRUE(NqUrdfReader::readFile(folder + "/" + name + ".urdf", manipulator));
    return manipulator;
}

/// Random numbers, vectors and motions between -1 and 1, repeatable from the seed.
class NqTestNumbers {
public:
    explicit NqTestNumbers(unsigned seed) : m_Generator(seed) {}

    double real() { return std::uniform_real_distribution<double>(-1.0, 1.0)(m_Generator); }
    NqVector vector() {
        const double x = real(), y = real();
        return {x, y, real()};
    }
    NqGeneralMotion motion() {
        const NqVector linear = vector();
        return {linear, vector()};
    }
    NqCoordinateSystemTransformation frame() {
        const NqVector translation = vector();
        return {translation, NqOrientation(3.0 * real(), vector())};
    }
    NqXmlRealVector reals(std::size_t count) {
        NqXmlRealVector result(count);
        for (double& value : result) {
            value = real();
        }
        return result;
    }

private:
    std::mt19937_64 m_Generator;
};

inline void nqExpectNear(const NqVector& expected, const NqVector& actual, double tolerance,
                         const std::string& what) {
    EXPECT_LE((actual - expected).mag(), tolerance * (1.0 + expected.mag()))
        << what << ": " << actual[0] << " " << actual[1] << " " << actual[2] << " instead of " << expected[0]
        << " " << expected[1] << " " << expected[2];
}
