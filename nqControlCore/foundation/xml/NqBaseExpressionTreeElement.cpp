#include <nqControlCore/foundation/xml/NqBaseExpressionTreeElement.h>

void NqBaseExpressionTreeElement::registerComponents() {
    NqXmlCompoundType::registerComponents();
}
