#pragma once

#include "support/NqSchemaValidator.h"
#include "support/NqTesting.h"

#include <nqControlCore/foundation/xml/NqXmlEnumType.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>
#include <nqControlCore/xml/NqXmlMapType.h>
#include <nqControlCore/xml/NqXmlSetType.h>
#include <nqControlCore/xml/NqXmlVariableMapType.h>
#include <nqControlCore/xml/NqXmlVariableVectorType.h>

using NqTestText = NqXmlBasicType<std::string>;
using NqTestTexts = NqXmlVectorType<NqTestText>;
using NqTestReals = NqXmlVectorType<NqXmlBasicType<double>>;
using NqTestMap = NqXmlMapType<NqXmlBasicType<unsigned short>, NqXmlBasicType<double>>;
using NqTestSet = NqXmlSetType<NqTestText>;

std::shared_ptr<NqXmlObject> made(const auto& object) {
    return std::shared_ptr<NqXmlObject>(object.clone());
}

/// Persistent classes to try the framework with: an abstract one, two below it, and what holds them.
class NqTestShape : public NqXmlPersistentBase<NqTestShape, NqXmlCompoundType> {
public:
    virtual double area() const = 0;
    NqTestText m_Name{"shape"};

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqTypeToken, &NqTestShape::m_Name, NqXmlComponentKind::Attribute));
    }
};

class NqTestSquare : public NqXmlPersistent<NqTestSquare, NqTestShape> {
public:
    NqTestSquare() = default;
    explicit NqTestSquare(double side) : m_Side(side) {}
    static inline const NqToken theToken = NqControlCore::ns + "square";
    static const NqToken& classToken() { return theToken; }
    double area() const override { return m_Side * m_Side; }

    bool xmlInit() override {
        m_Mode.registerEnumeration(0, NqControlCore::NqProportionalToken);
        m_Mode.registerEnumeration(1, NqControlCore::NqTrapezoidalToken);
        return NqXmlPersistent::xmlInit();
    }

    NqXmlBasicType<double> m_Side{1.0};
    NqXmlEnumType<unsigned int> m_Mode{1U};
    NqXmlBasicType<int> m_Given{0};
    NqXmlBasicType<int> m_Old{0};

private:
    using NqXmlPersistent = ::NqXmlPersistent<NqTestSquare, NqTestShape>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        return nqComponentList(
            nqComponent(NqSizeToken, &NqTestSquare::m_Side),
            nqComponent(NqFilteringModeToken, &NqTestSquare::m_Mode),
            nqComponent(NqPositionToken, &NqTestSquare::m_Given, NqXmlComponentKind::ReadOnly),
            nqComponent(NqOffsetToken, &NqTestSquare::m_Old, NqXmlComponentKind::Legacy));
    }
};

class NqTestCircle : public NqXmlPersistent<NqTestCircle, NqTestShape> {
public:
    static inline const NqToken theToken = NqControlCore::ns + "circle";
    static const NqToken& classToken() { return theToken; }
    double area() const override { return 3.0; }
};

/// A collection of squares and circles.
template <typename Base, const NqToken& name>
class NqTestShapes : public NqXmlConcrete<NqTestShapes<Base, name>, Base> {
public:
    static const NqToken& classToken() { return name; }
    void registerComponentCreators() override {
        this->registerComponentCreator(NqTestSquare::classToken(), NqTestSquare::creator);
        this->registerComponentCreator(NqTestCircle::classToken(), NqTestCircle::creator);
        this->registerComponentCreator("count", NqTestTexts::creator); // which is no shape
    }
};
using NqTestShapeVector =
    NqTestShapes<NqXmlVariableVectorType<NqTestShape>, NqControlCore::NqEndEffectorVectorToken>;
using NqTestShapeMap =
    NqTestShapes<NqXmlVariableMapType<NqTestText, NqTestShape>, NqControlCore::NqEndEffectorMapToken>;

/// An owner whose squares are others than a square is by itself.
class NqTestHolder : public NqXmlPersistent<NqTestHolder, NqXmlCompoundType> {
public:
    static const NqToken& classToken() { return NqControlCore::NqMotionFilterSetToken; }
    NqTestSquare m_Square{3.0};
    NqXmlVectorType<NqTestSquare> m_Squares{NqTestSquare(3.0)};
    NqTestShapeVector m_Shapes;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(NqControlCore::NqFrameToken, &NqTestHolder::m_Square),
                               nqComponent(NqControlCore::NqMotionFilterSetsToken, &NqTestHolder::m_Squares),
                               nqComponent(NqControlCore::NqEndEffectorVectorToken, &NqTestHolder::m_Shapes));
    }
};

/// A collection with an entry for each of the argument lists of its add().
template <typename Collection, typename... Entries>
Collection nqHolding(const Entries&... entries) {
    Collection collection;
    (std::apply([&](const auto&... entry) { collection.add(entry...); }, entries), ...);
    return collection;
}
