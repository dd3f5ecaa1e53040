#pragma once

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <gtest/gtest.h>

#include <string>

/// The manipulator of a description: the tests' own "branched", or one of the project's models.
inline NqIndividualManipulator nqTestManipulator(const std::string& name) {
    NqIndividualManipulator manipulator;
    const std::string folder = name == "branched" ? NQ_TEST_MODELS : NQ_MODELS;
    EXPECT_TRUE(NqUrdfReader::readFile(folder + "/" + name + ".urdf", manipulator));
    return manipulator;
}

/// Compares with a tolerance relative to 1 plus the expected length.
inline void nqExpectNear(const NqVector& expected, const NqVector& actual, double tolerance,
                         const std::string& what) {
    EXPECT_LE((actual - expected).mag(), tolerance * (1.0 + expected.mag()))
        << what << ": " << actual[0] << " " << actual[1] << " " << actual[2] << " instead of " << expected[0]
        << " " << expected[1] << " " << expected[2];
}
