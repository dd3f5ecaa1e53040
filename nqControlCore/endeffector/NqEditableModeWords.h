#pragma once

#include <string>

class NqBaseMotionFilter;

/// The words that stand for filtering modes in editable values.
class NqEditableModeWords {
public:
    /// "trapezoidal" for mode 1, "proportional" for mode 0 and "threeHalves" for any other.
    static std::string print(const NqBaseMotionFilter& filter);

    /// Sets the mode that a word stands for, in any of its accepted spellings; any other word leaves the
    /// mode.
    static void apply(const std::string& word, NqBaseMotionFilter& filter);
};
