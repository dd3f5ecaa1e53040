#include <nqControlCore/expression/NqBaseSoftConstraintHandler.h>

template class NqBaseExpressionTreeContainer<NqBaseSoftConstraintHandler>;
