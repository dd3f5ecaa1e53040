#include <nqControlCore/expression/NqExpressionBudget.h>

#include <nqControlCore/foundation/text/NqPrint.h>

namespace {

thread_local NqExpressionBudget* theCurrent = nullptr;

} // namespace

NqExpressionBudget::NqExpressionBudget() : m_Outer(theCurrent) {
    theCurrent = this;
}

NqExpressionBudget::~NqExpressionBudget() {
    theCurrent = m_Outer;
}

NqExpressionBudget* NqExpressionBudget::current() {
    return theCurrent;
}

bool NqExpressionBudget::admits(std::uint64_t rows, std::uint64_t columns) {
    return rows == 0 || (rows <= kMostElements && columns <= kMostElements / rows);
}

bool NqExpressionBudget::isLeft() {
    if (m_Bytes <= kMostBytes) {
        return true;
    }
    if (!m_IsReported) {
        m_IsReported = true;
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqExpressionContainer::value(): the matrices of the "
                                    "expression take more than %d bytes together\n",
                                    kMostBytes);
    }
    return false;
}
