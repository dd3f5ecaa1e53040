#include <nqControlCore/foundation/manipulator/NqSecondMoment.h>

namespace {

/// Two numbers that go through the same operations side by side.
typedef double Pair __attribute__((vector_size(2 * sizeof(double))));

} // namespace

void NqSecondMoment::rotateAll(const std::vector<NqSecondMoment>& moments,
                               const std::vector<NqCoordinateSystemTransformation>& frames,
                               std::vector<NqSecondMoment>& result) {
    std::size_t first = 0;
    for (; first + 1 < moments.size(); first += 2) {
        double p[4], q[4];
        frames[first].orientation().getQuaternion(p[0], p[1], p[2], p[3]);
        frames[first + 1].orientation().getQuaternion(q[0], q[1], q[2], q[3]);
        const Pair turns[4] = {{p[0], q[0]}, {p[1], q[1]}, {p[2], q[2]}, {p[3], q[3]}};
        Pair elements[6], turned[6];
        for (unsigned i = 0; i < 6; ++i) {
            elements[i] = Pair{moments[first].m_Elements[i], moments[first + 1].m_Elements[i]};
        }
        rotate(turns, elements, turned);
        for (unsigned i = 0; i < 6; ++i) {
            result[first].m_Elements[i] = turned[i][0];
            result[first + 1].m_Elements[i] = turned[i][1];
        }
    }
    if (first < moments.size()) {
        result[first] = moments[first];
        result[first].transformBy(frames[first].orientation());
    }
}
