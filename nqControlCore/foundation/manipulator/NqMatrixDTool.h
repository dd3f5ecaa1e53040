#pragma once

#include <nqControlCore/foundation/manipulator/NqCompositeMoments.h>

class NqIndividualManipulator;
class NqManipulatorActiveState;
class NqReArray;

/// The matrix D of the momenta that unit rates of the joints give a manipulator: with x the joint rates, and
/// the base at rest, the manipulator has the spatial momentum D^T x.
///
/// All of it comes from one pass over the tree for each pose, which the state keeps. The tool itself holds
/// only the address of the manipulator, which must be there when it is asked for moments.
class NqMatrixDTool {
public:
    NqMatrixDTool() = default;
    NqMatrixDTool(const NqMatrixDTool&) = default;
    NqMatrixDTool& operator=(const NqMatrixDTool&) = default;
    virtual ~NqMatrixDTool() = default;

    /// The same manipulator object.
    bool operator==(const NqMatrixDTool&) const = default;

    /// Null at first.
    virtual const NqIndividualManipulator* manipulator() const { return m_Manipulator; }
    virtual void setManipulator(const NqIndividualManipulator& manipulator) { m_Manipulator = &manipulator; }

    /// The moments of the manipulator in the pose of the state, of first and second order; they are the
    /// state's, and hold as long as its frames. Empty, with a line at print type 4, without a manipulator. A
    /// model has one set of mass properties, which every `set` gives.
    virtual const NqCompositeMoments& compositeMoments(NqManipulatorActiveState& state,
                                                       unsigned set = 0) const;

    /// Makes `matrix` D, numberOfJoints() by 6: in row j the linear momentum x, y, z (kg m/s), then the
    /// angular momentum x, y, z (kg m^2/s) about the origin of the base frame, for a unit rate of joint j.
    ///
    /// `orientation` is that of the base frame in the frame whose axes the rows are to be in: the orientation
    /// of baseFrameInSystem() for those of the system frame, the identity for those of the base frame.
    virtual void momentumMatrix(const NqCompositeMoments& moments, const NqOrientation& orientation,
                                NqReArray& matrix) const;

private:
    const NqIndividualManipulator* m_Manipulator = nullptr;
};
