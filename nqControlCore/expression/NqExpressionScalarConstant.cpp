#include <nqControlCore/expression/NqExpressionScalarConstant.h>

const NqToken& NqExpressionScalarConstant::classToken() {
    return NqControlCore::NqScalarConstantToken;
}

NqExpressionScalarConstant NqExpressionScalarConstant::objectWithValue(double scalar) {
    NqExpressionScalarConstant constant;
    constant.setScalar(scalar);
    return constant;
}

bool NqExpressionScalarConstant::read(NqXmlReader& reader) {
    return m_Scalar.read(reader);
}

bool NqExpressionScalarConstant::write(NqXmlWriter& writer) const {
    return m_Scalar.write(writer);
}

bool NqExpressionScalarConstant::writeSchema(NqXmlSchema& schema) const {
    return m_Scalar.writeSchema(schema);
}

void NqExpressionScalarConstant::fill(NqReArray& value) const {
    value[0][0] = m_Scalar;
}
