#pragma once

#include <nqControlCore/foundation/manipulator/NqSecondMoment.h>
#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/math/NqVector.h>

#include <cstddef>
#include <vector>

/// How the mass of a manipulator is spread in one pose: the moments of mass of each link together with all
/// that hangs from it, and the momentum of these for a unit rate of the joint that moves them. Entries are
/// those of NqKinematicTree (the base, then one per joint); all are in the axes of the system frame.
///
/// Featherstone, "Rigid Body Dynamics Algorithms", 2008, chapter 6; Orin, Goswami and Lee, "Centroidal
/// dynamics of a humanoid robot", Autonomous Robots 35, 2013, for the momenta.
struct NqCompositeMoments {
    // Of the first order, which the centre of mass, gravity and linear momentum need.

    /// First moments (kg m) about the origins of the entries' DH frames.
    std::vector<NqVector> firstMoments;
    /// Linear momenta for unit rates: by how much the first moment of the manipulator changes. Zero for the
    /// base.
    std::vector<NqVector> linearMomenta;

    // Of the second order.

    /// Second moments (kg m^2) about the same origins.
    std::vector<NqSecondMoment> secondMoments;
    /// Angular momenta for unit rates, about the origin of the base frame. Zero for the base.
    std::vector<NqVector> angularMomenta;

    /// Of the base frame, in the system frame.
    NqOrientation baseOrientation;

    std::size_t numberOfJoints() const { return linearMomenta.empty() ? 0 : linearMomenta.size() - 1; }
};
