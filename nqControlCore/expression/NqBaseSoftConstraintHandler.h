#pragma once

#include <nqControlCore/expression/NqBaseExpressionTreeContainer.h>
#include <nqControlCore/foundation/xml/NqBaseExpressionTreeElement.h>

/// The class of the nodes in trees of soft constraint handlers, which are yet to come: a node of a tree and
/// nothing more.
class NqBaseSoftConstraintHandler : public NqBaseExpressionTreeElement {
public:
    using NqBaseExpressionTreeElement::NqBaseExpressionTreeElement;
};

extern template class NqBaseExpressionTreeContainer<NqBaseSoftConstraintHandler>;
