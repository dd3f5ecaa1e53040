#pragma once

#include <string>

class NqIndividualManipulator;

/// Makes manipulators from robot descriptions in URDF.
///
/// Revolute, continuous, prismatic and fixed joints are known; a moving joint that mimics another is an
/// ordinary one, with a line at print type 3. So have elements with a prefix, which xacro may have left: one
/// line names the first, and all are passed by. Joint indices rise from the root to the leaves, a whole
/// branch before the next, branches in the order of their joints in the text. Labels are the link names, the
/// base is the root link, and primary frames are the link frames. Position, rate and effort limits and the
/// inertial data come along; shapes are passed by.
///
/// A description that can't be used prints a line at print type 4 that names the file and what is wrong,
/// gives false and leaves the manipulator as it was. That goes for text that isn't well-formed or has a
/// document type, other joint types, joints without limits or with a zero axis, links that don't form one
/// tree, numbers that aren't finite, limits that are negative or the wrong way round, and descriptions of
/// more than 4096 links, 256 attributes in one tag or 16 MiB. Nothing is thrown.
class NqUrdfReader {
public:
    static bool readFile(const std::string& fileName, NqIndividualManipulator& manipulator);
    static bool readString(const std::string& text, NqIndividualManipulator& manipulator);
};
