#include <nqControlCore/expression/NqExpressionContainer.h>

#include <nqControlCore/expression/NqExpressionAnd.h>
#include <nqControlCore/expression/NqExpressionCosine.h>
#include <nqControlCore/expression/NqExpressionDiagonalMatrix.h>
#include <nqControlCore/expression/NqExpressionElementInverse.h>
#include <nqControlCore/expression/NqExpressionElementLog.h>
#include <nqControlCore/expression/NqExpressionElementLogN.h>
#include <nqControlCore/expression/NqExpressionElementPow.h>
#include <nqControlCore/expression/NqExpressionElementRoot.h>
#include <nqControlCore/expression/NqExpressionGeneralColumn.h>
#include <nqControlCore/expression/NqExpressionGreaterThan.h>
#include <nqControlCore/expression/NqExpressionGreaterThanOrEqualTo.h>
#include <nqControlCore/expression/NqExpressionIdentityMatrix.h>
#include <nqControlCore/expression/NqExpressionLessThan.h>
#include <nqControlCore/expression/NqExpressionLessThanOrEqualTo.h>
#include <nqControlCore/expression/NqExpressionMinus.h>
#include <nqControlCore/expression/NqExpressionNegative.h>
#include <nqControlCore/expression/NqExpressionOr.h>
#include <nqControlCore/expression/NqExpressionPlus.h>
#include <nqControlCore/expression/NqExpressionScalarConstant.h>
#include <nqControlCore/expression/NqExpressionSine.h>
#include <nqControlCore/expression/NqExpressionSingleElementColumn.h>
#include <nqControlCore/expression/NqExpressionSingleElementMatrix.h>
#include <nqControlCore/expression/NqExpressionTimes.h>
#include <nqControlCore/expression/NqExpressionTranspose.h>

template class NqBaseExpressionTreeContainer<NqExpressionElement>;

namespace {

template <typename... Elements>
void registerElements(NqExpressionContainer& container) {
    (container.registerComponentCreator(Elements::classToken(), Elements::creator), ...);
}

} // namespace

const NqToken& NqExpressionContainer::classToken() {
    return NqControlCore::NqExpressionContainerToken;
}

void NqExpressionContainer::registerComponentCreators() {
    registerElements<NqExpressionScalarConstant, NqExpressionPlus, NqExpressionMinus, NqExpressionTimes,
                     NqExpressionElementInverse, NqExpressionNegative, NqExpressionSine, NqExpressionCosine,
                     NqExpressionElementPow, NqExpressionElementRoot, NqExpressionAnd, NqExpressionOr,
                     NqExpressionLessThan, NqExpressionGreaterThan, NqExpressionLessThanOrEqualTo,
                     NqExpressionGreaterThanOrEqualTo, NqExpressionSingleElementColumn, NqExpressionTranspose,
                     NqExpressionSingleElementMatrix, NqExpressionIdentityMatrix, NqExpressionDiagonalMatrix,
                     NqExpressionGeneralColumn, NqExpressionElementLog, NqExpressionElementLogN>(*this);
}

void NqExpressionContainer::setContainer(const NqXmlBaseVariableCompoundType* container) {
    if (topElement()) {
        topElement()->setContainer(container);
    }
}

const NqReArray& NqExpressionContainer::value() const {
    static const NqReArray theEmptyMatrix;
    const NqExpressionBudget budget;
    return topElement() ? topElement()->value() : theEmptyMatrix;
}
