#include <nqControlCore/endeffector/NqErrorWeights.h>

bool NqErrorWeights::rightSize(unsigned end, NqReArray& weights) {
    const bool isSquare = weights.size() != 0 && weights[0].size() > 1;
    if (weights.size() < end) {
        weights.resizeArray(end, isSquare ? end : 1);
    }
    return isSquare;
}
