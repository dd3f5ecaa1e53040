#include <nqControlCore/core/NqStackedVectors.h>

#include <algorithm>

unsigned NqStackedVectors::doc(const Vectors& vectors) {
    std::size_t sum = 0;
    for (const NqXmlRealVector& vector : vectors) {
        sum += vector.size();
    }
    return static_cast<unsigned>(sum);
}

unsigned NqStackedVectors::doc(const Vectors& vectors, const std::vector<unsigned int>& indices) {
    std::size_t sum = 0;
    for (const unsigned index : indices) {
        sum += vectors[index].size();
    }
    return static_cast<unsigned>(sum);
}

void NqStackedVectors::stack(const Vectors& vectors, std::vector<double>& result) {
    result.resize(doc(vectors));
    auto end = result.begin();
    for (const NqXmlRealVector& vector : vectors) {
        end = std::copy(vector.begin(), vector.end(), end);
    }
}

void NqStackedVectors::stack(const Vectors& vectors, const std::vector<unsigned int>& indices,
                             std::vector<double>& result) {
    result.resize(doc(vectors, indices));
    auto end = result.begin();
    for (const unsigned index : indices) {
        end = std::copy(vectors[index].begin(), vectors[index].end(), end);
    }
}
