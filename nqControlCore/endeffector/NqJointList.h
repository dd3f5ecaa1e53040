#pragma once

#include <cstddef>
#include <string>
#include <vector>

class NqIndividualManipulator;
class NqManipulatorLink;

/// The joints that labels stand for, looked up once and remembered: each label is that of the link that the
/// joint moves. A label of an unknown link, or of one that no joint moves, stands for none.
class NqJointList {
public:
    /// One label's joint: its index in joint vectors, which is its Jacobian column; 0 where there is none.
    struct Joint {
        unsigned index = 0;
        bool isValid = false;
    };

    bool isEmpty() const { return m_Joints.empty(); }
    std::size_t size() const { return m_Joints.size(); }
    const Joint& operator[](std::size_t position) const { return m_Joints[position]; }

    void clear() { m_Joints.clear(); }

    /// Whether a joint moves that link, which may be null.
    static bool hasJoint(const NqManipulatorLink* link);

    /// Appends the joint of a label, silently.
    void append(const NqIndividualManipulator& manipulator, const std::string& label);

    /// The same, with a message where the label is unknown, with the label in it, or has no joint.
    void append(const NqIndividualManipulator& manipulator, const std::string& label,
                const char* unknownMessage, const char* noJointMessage);

    /// Appends the joint of a label that has one, silently; whether it has.
    bool appendFound(const NqIndividualManipulator& manipulator, const std::string& label);

private:
    void append(const NqManipulatorLink* link);

    std::vector<Joint> m_Joints;
};
