#pragma once

#include <nqControlCore/endeffector/NqEditableLists.h>

/// What a class of end-effectors tells about itself to an editing interface: one object for all of its kind.
struct NqEndEffectorDescription {
    NqLabelVector labels;                ///< of the editable values
    NqLabelVector tooltips;              ///< of the editable values
    NqXmlBasicType<std::string> tooltip; ///< one line on the class

    /// Of a class that tells nothing.
    static const NqEndEffectorDescription& none();
};
