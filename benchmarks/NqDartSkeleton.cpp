#include "NqDartSkeleton.h"

#include <dart/utils/urdf/DartLoader.hpp>

namespace {

/// DART refuses robots whose meshes it can't find, and here nobody needs them.
std::string withoutShapes(std::string urdf) {
    for (const std::string element : {"visual", "collision"}) {
        const std::string end = "</" + element + ">";
        for (std::size_t first; (first = urdf.find("<" + element)) != std::string::npos;) {
            const std::size_t last = urdf.find(end, first);
            if (last == std::string::npos) {
                return urdf;
            }
            urdf.erase(first, last + end.size() - first);
        }
    }
    return urdf;
}

} // namespace

dart::dynamics::SkeletonPtr nqDartSkeleton(const std::string& urdf, bool movesBase) {
    using Loader = dart::utils::DartLoader;
    const auto rootJoint = movesBase ? Loader::RootJointType::FLOATING : Loader::RootJointType::FIXED;
    constexpr double nothing = 1.0e-300; // of zeros DART complains
    const dart::dynamics::Inertia massless(nothing, Eigen::Vector3d::Zero(),
                                           nothing * Eigen::Matrix3d::Identity());
    return Loader(Loader::Options(nullptr, rootJoint, massless)).parseSkeletonString(withoutShapes(urdf), "");
}
