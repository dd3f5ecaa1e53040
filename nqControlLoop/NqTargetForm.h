#pragma once

#include <span>
#include <string>
#include <string_view>

class NqEndEffector;
class NqToken;

/// What the target of an end-effector consists of, and how it is written.
struct NqTargetForm {
    enum Content { Nothing, Place, Orientation, Frame, Number, Values };

    Content content;
    std::string_view syntax;  ///< "X,Y,Z"
    std::string_view meaning; ///< in words, with units

    bool hasPlace() const { return content == Place || content == Frame; }
    bool hasOrientation() const { return content == Orientation || content == Frame; }

    static const NqTargetForm& of(Content content);
    /// One for each content, in the order in which help lists them.
    static std::span<const NqTargetForm> all();
};

/// What is known of a type of end-effector beyond its interface: the line that it has in the table of all
/// types.
struct NqTargetType {
    /// How the way that is left to a target is measured.
    enum Measure {
        ByPlacement, ///< distance, angle or difference of the placements
        ByRows, ///< what the end-effector commands in one step with its motion filter switched off: for rows
                ///< that are only some of a placement's freedoms
        ByResidual ///< the numbers of the placement themselves, which are to be zero
    };

    NqTargetForm::Content content;
    Measure measure;
    unsigned linearRows;   ///< the first rows: of a place, or of a number
    unsigned angularRows;  ///< the rows behind them
    std::string_view unit; ///< of a number: "m", "rad", empty for what the joints say
    double least;          ///< of a number
    double greatest;
    bool isOfAllMass = false; ///< of the manipulator, not of a link

    /// The type's line. A type that has none gets one by its base class or, failing that, by what its
    /// placement and its rows look like.
    static NqTargetType of(const NqEndEffector& endEffector);

    /// Names of the types that take targets of a form, without their common ending, separated by commas.
    static std::string names(NqTargetForm::Content content);
};
