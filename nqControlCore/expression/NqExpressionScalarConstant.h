#pragma once

#include <nqControlCore/expression/NqExpressionLeaf.h>

/// A number, as a 1 by 1 matrix. Element "scalarConstant", with the number as its content.
class NqExpressionScalarConstant : public NqExpressionLeaf<NqExpressionScalarConstant> {
public:
    using NqExpressionLeaf::NqExpressionLeaf;
    static const NqToken& classToken();

    virtual double scalar() const { return m_Scalar; }
    virtual void setScalar(double scalar) { m_Scalar = scalar; }
    static NqExpressionScalarConstant objectWithValue(double scalar);

    bool read(NqXmlReader& reader) override;
    bool write(NqXmlWriter& writer) const override;
    bool writeSchema(NqXmlSchema& schema) const override;

    bool sameValue(const NqExpressionScalarConstant& other) const { return m_Scalar == other.m_Scalar; }

private:
    friend NqExpressionLeaf<NqExpressionScalarConstant>;
    static constexpr bool kIsAlwaysFilled = true;
    std::array<std::uint64_t, 2> shape() const { return {1, 1}; }
    void fill(NqReArray& value) const;

    Real m_Scalar{0.0};
};
