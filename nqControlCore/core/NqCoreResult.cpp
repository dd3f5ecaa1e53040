#include <nqControlCore/core/NqCoreResult.h>

#include <algorithm>
#include <cmath>

const NqToken& NqCoreResult::classToken() {
    return NqControlCore::NqCoreResultToken;
}

void NqCoreResult::setComponentsFromTotalAndNull(const std::vector<double>& total,
                                                 const std::vector<double>& nullPart) {
    const std::size_t size = std::min(total.size(), nullPart.size());
    m_BaseComponent.resize(size);
    m_NullSpaceComponent.resize(size);
    for (std::size_t i = 0; i < size; ++i) {
        m_BaseComponent[i] = total[i] - nullPart[i];
        m_NullSpaceComponent[i] = nullPart[i];
    }
}

void NqCoreResult::getComponents(std::vector<double>& base, std::vector<double>& nullPart) const {
    base = m_BaseComponent;
    nullPart = m_NullSpaceComponent;
}

bool NqCoreResult::isNullSpaceComponentZero() const {
    return std::ranges::all_of(m_NullSpaceComponent, [](double entry) { return entry == 0.0; });
}

bool NqCoreResult::getComponentCoordinates(const NqReArray& rates, double& baseCoordinate,
                                           double& nullCoordinate) const {
    const std::size_t size = std::min(m_BaseComponent.size(), m_NullSpaceComponent.size());
    const auto rate = [&](std::size_t i) { return rates[i].empty() ? 0.0 : rates[i][0]; };

    // All vectors are scaled by the greatest magnitude in them, so that no sum overflows.
    double scale = 1.0e-300;
    for (std::size_t i = 0; i < rates.size(); ++i) {
        scale = std::max(scale, std::fabs(rate(i)));
    }
    for (std::size_t i = 0; i < size; ++i) {
        scale = std::max({scale, std::fabs(m_BaseComponent[i]), std::fabs(m_NullSpaceComponent[i])});
    }
    const double k = 1.0 / scale;

    // Normal equations of x b + y c = v.
    double bb = 0.0, bc = 0.0, cc = 0.0, vb = 0.0, vc = 0.0;
    for (std::size_t i = 0; i < size; ++i) {
        const double b = m_BaseComponent[i] * k;
        const double c = m_NullSpaceComponent[i] * k;
        bb += b * b;
        bc += b * c;
        cc += c * c;
        if (i < rates.size()) {
            const double v = rate(i) * k;
            vb += v * b;
            vc += v * c;
        }
    }
    const double determinant = cc * bb - bc * bc;
    if (determinant == 0.0) {
        const bool isNullAlone = bb == 0.0 && cc != 0.0;
        const bool isBaseAlone = bb != 0.0 && cc == 0.0;
        baseCoordinate = isBaseAlone ? vb / bb : 0.0;
        nullCoordinate = isNullAlone ? vc / cc : 0.0;
        return isNullAlone || isBaseAlone;
    }
    const double r = 1.0 / determinant;
    baseCoordinate = r * cc * vb - r * bc * vc;
    nullCoordinate = r * bb * vc - r * bc * vb;
    return true;
}

bool NqCoreResult::sameValue(const NqCoreResult& other) const {
    return m_BaseComponent == other.m_BaseComponent && m_NullSpaceComponent == other.m_NullSpaceComponent &&
           m_PrimaryDeterminant == other.m_PrimaryDeterminant;
}
