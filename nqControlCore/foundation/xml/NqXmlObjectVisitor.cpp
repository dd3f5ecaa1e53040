#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>

void NqXmlObjectVisitor::visit(const NqXmlObject*) {}

void NqXmlObjectVisitor::visit(const NqXmlBaseVariableCompoundType*) {}
