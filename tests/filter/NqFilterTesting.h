#pragma once

#include "support/NqTesting.h"

#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>
#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>

/// A placement from which frames can be told apart.
inline const NqCoordinateSystemTransformation kActual({0.3, -0.2, 0.5}, NqOrientation(0.7, {0.2, -0.5, 0.4}));

inline void expectNear(const NqVector& actual, const NqVector& expected, double tolerance = 1e-12) {
    EXPECT_NEAR((actual - expected).mag(), 0.0, tolerance)
        << actual.x() << ' ' << actual.y() << ' ' << actual.z();
}
