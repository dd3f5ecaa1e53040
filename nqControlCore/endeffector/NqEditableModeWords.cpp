#include <nqControlCore/endeffector/NqEditableModeWords.h>

#include <nqControlCore/filter/NqBaseMotionFilter.h>

namespace {

/// Whether a word is one of the spellings.
template <typename... Spellings>
bool isOneOf(const std::string& word, Spellings... spellings) {
    return ((word == spellings) || ...);
}

} // namespace

std::string NqEditableModeWords::print(const NqBaseMotionFilter& filter, Set words) {
    switch (filter.filteringMode()) {
    case NqBaseMotionFilter::Proportional:
        return "proportional";
    case NqBaseMotionFilter::Trapezoidal:
        return "trapezoidal";
    default:
        return words == Set::Three ? "threeHalves" : "trapezoidal";
    }
}

void NqEditableModeWords::apply(const std::string& word, NqBaseMotionFilter& filter, Set words) {
    if (isOneOf(word, "proportional", "Proportional", "PROPORTIONAL")) {
        filter.setFilteringMode(NqBaseMotionFilter::Proportional);
    } else if (isOneOf(word, "trapezoidal", "Trapezoidal", "TRAPEZOIDAL")) {
        filter.setFilteringMode(NqBaseMotionFilter::Trapezoidal);
    } else if (words == Set::Three &&
               isOneOf(word, "threeHalves", "threehalves", "ThreeHalves", "THREEHALVES")) {
        filter.setFilteringMode(NqBaseMotionFilter::ThreeHalves);
    }
}
