#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>

const NqCoordinateSystemTransformation& NqCoordinateSystemTransformation::identity() {
    static const NqCoordinateSystemTransformation theIdentity;
    return theIdentity;
}
