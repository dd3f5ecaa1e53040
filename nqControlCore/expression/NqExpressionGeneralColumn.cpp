#include <nqControlCore/expression/NqExpressionGeneralColumn.h>

const NqToken& NqExpressionGeneralColumn::classToken() {
    return NqControlCore::NqGeneralColumnToken;
}

void NqExpressionGeneralColumn::assign(unsigned size, const double& value) {
    if (admits(size, 1, classToken())) {
        m_Column.assign(size, value);
    }
}

bool NqExpressionGeneralColumn::setValue(unsigned index, const double& value) {
    if (index >= m_Column.size()) {
        return false;
    }
    m_Column[index] = value;
    return true;
}

void NqExpressionGeneralColumn::fill(NqReArray& value) const {
    value = m_Column.values();
}
