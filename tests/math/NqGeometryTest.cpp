#include "support/NqTesting.h"
#include <nqControlCore/foundation/math/NqPlanarVector.h>
#include <nqControlCore/foundation/math/NqSpatialMatrix.h>

namespace {

using Quaternion = std::array<double, 4>;

Quaternion quaternion(const NqOrientation& orientation) {
    Quaternion q;
    orientation.getQuaternion(q[0], q[1], q[2], q[3]);
    return q;
}

NqOrientation oriented(const Quaternion& q) {
    NqOrientation orientation;
    orientation.setFromQuaternion(q[0], q[1], q[2], q[3]);
    return orientation;
}

void expectNear(const Quaternion& q, const Quaternion& expected, double tolerance = 1e-15) {
    for (unsigned i = 0; i < 4; ++i) {
        EXPECT_NEAR(q[i], expected[i], tolerance) << i;
    }
}

class UnitLength : public testing::TestWithParam<double> {};

TEST_P(UnitLength, IsReachedFromAnyMagnitude) {
    const double s = GetParam();
    const NqVector v = NqVector(2.0 * s, -s, 2.0 * s).unitVector(),
                   expected(2.0 / 3.0, -1.0 / 3.0, 2.0 / 3.0);
    EXPECT_LT((v - expected).mag(), 1e-15);
    NqVector thin(s, 0.0, 1e-20 * s);
    EXPECT_LT((thin.normalize() - NqVector::xVector(1.0)).mag(), 1e-15);
    EXPECT_NEAR(NqPlanarVector(-3.0 * s, 4.0 * s).unitVector()[0], -0.6, 1e-15);
    EXPECT_NEAR(NqPlanarVector(-3.0 * s, 4.0 * s).unitVector()[1], 0.8, 1e-15);
    expectNear(quaternion(oriented({s, -s, s, -s})), {0.5, -0.5, 0.5, -0.5});
    expectNear(quaternion(NqOrientation(2.0, NqVector(0.0, 3.0 * s, 4.0 * s))),
               {std::cos(1.0), 0.0, 0.6 * std::sin(1.0), 0.8 * std::sin(1.0)});
}

INSTANTIATE_TEST_SUITE_P(Magnitudes, UnitLength,
                         testing::Values(1e-320, 1e-300, 1e-162, 1e-140, 1.0, 1e140, 1e160, 1e300, 3e307));

TEST(UnitLength, OfNothingIsTheXAxisAndOfNaNIsNaN) {
    EXPECT_EQ(NqVector().unitVector(), NqVector::xVector(1.0));
    EXPECT_EQ(NqPlanarVector().unitVector(), NqPlanarVector(1.0, 0.0));
    EXPECT_TRUE(oriented({0, 0, 0, 0}) == NqOrientation() &&
                NqOrientation(2.0, NqVector()) == NqOrientation());
    EXPECT_TRUE(std::isnan(NqVector(NAN, 0.0, 0.0).unitVector().x()));
    EXPECT_TRUE(std::isnan(NqVector(0.0, 1e-300, NAN).unitVector().y()));
    EXPECT_EQ(NqNonNegReal(NAN), 0.0);
}

/// The image of a vector by the formula of Rodrigues.
NqVector turned(const NqVector& v, double angle, const NqVector& axis) {
    return std::cos(angle) * v + std::sin(angle) * axis.cross(v) +
           (1.0 - std::cos(angle)) * axis.dot(v) * axis;
}

TEST(Orientation, AgreesWithItsDirectionCosines) {
    // Large angles about each axis, both ways, make each of the four quaternion components the largest one.
    for (const double angle : {0.7, -0.7, 6.9, 2.9, -2.9, 3.14159, -3.14159}) {
        for (unsigned longest = 0; longest < 3; ++longest) {
            NqVector axis(0.3, -0.2, 0.1);
            axis[longest] = angle > 1.0 ? 0.9 : -0.9;
            const NqOrientation orientation(angle, axis.normalize());
            const NqVector images[] = {turned(NqVector::xVector(1.0), angle, axis),
                                       turned(NqVector::yVector(1.0), angle, axis),
                                       turned(NqVector::zVector(1.0), angle, axis)};
            NqVector x, y, z;
            orientation.getDcmColumns(x, y, z);
            EXPECT_LT((x - images[0]).mag() + (y - images[1]).mag() + (z - images[2]).mag(), 1e-14);
            EXPECT_LT((orientation * NqVector(1, 2, 3) - (images[0] + 2 * images[1] + 3 * images[2])).mag(),
                      1e-14);

            NqSpatialMatrix cosines;
            cosines.setToDcm(orientation);
            orientation.getDcmRows(x, y, z);
            EXPECT_TRUE(cosines == NqSpatialMatrix(x, y, z) &&
                        cosines.transpose() == NqSpatialMatrix(orientation.xAxis(), cosines.transpose()[1],
                                                               orientation.zAxis()));
            EXPECT_LT((cosines.transpose()[1] - images[1]).mag(), 1e-14);

            // Of q and -q that one comes back of which the largest component is positive.
            NqOrientation back;
            back.setFromDcmColumns(images[0], images[1], images[2]);
            Quaternion q = quaternion(orientation);
            const double largest = *std::ranges::max_element(q, {}, [](double c) { return std::fabs(c); });
            std::ranges::for_each(q, [&](double& c) { c *= std::copysign(1.0, largest); });
            expectNear(quaternion(back), q, 1e-14);
        }
    }
}

TEST(SpatialMatrix, OfACrossProductIsSkew) {
    const NqVector v(1.0, -2.0, 3.0), w(0.5, 4.0, -1.0);
    NqSpatialMatrix skew;
    skew.setToCrossProductMatrix(v);
    EXPECT_EQ(skew * w, v.cross(w));
    EXPECT_EQ(skew.transpose() * w, w.cross(v));
    EXPECT_EQ((skew * skew) * w, v.cross(v.cross(w)));
}

} // namespace
