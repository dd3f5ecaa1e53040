#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

#include <nqControlCore/foundation/text/NqPrint.h>

void NqJointVectors::setEntry(const char* caller, NqXmlRealVector& vector, unsigned index, double value) {
    if (index >= vector.size()) {
        Nq::Print::instance().write(Nq::PrintFailure, "%s(): no joint %u among %u.\n", caller, index,
                                    vector.size());
        return;
    }
    vector[index] = value;
}

void NqJointVectors::fit(const char* caller, NqXmlRealVector& vector, std::size_t count) {
    if (vector.size() != count) {
        Nq::Print::instance().write(Nq::PrintFailure, "%s(): %u values for %u joints.\n", caller,
                                    vector.size(), count);
        vector.resize(count);
    }
}
