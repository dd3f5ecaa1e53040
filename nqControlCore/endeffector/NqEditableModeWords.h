#pragma once

#include <string>

class NqBaseMotionFilter;

/// The words that stand for filtering modes in editable values.
class NqEditableModeWords {
public:
    /// Which words there are: all three, or those of the modes 0 and 1 alone.
    enum class Set { Two, Three };

    /// "proportional" for mode 0, "trapezoidal" for mode 1 and "threeHalves" for any other; of two words
    /// "trapezoidal" for any but 0.
    static std::string print(const NqBaseMotionFilter& filter, Set words);

    /// Sets the mode that a word stands for, in any of its accepted spellings; any other word leaves the
    /// mode.
    static void apply(const std::string& word, NqBaseMotionFilter& filter, Set words);
};
