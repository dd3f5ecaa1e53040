// What an editing interface needs: every end-effector tells its fields as a list of labelled texts and takes
// changed texts back, whatever its class is.
#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <cstdio>
#include <memory>

namespace {

void show(const NqEndEffector& endEffector) {
    const NqLabelVector& labels = endEffector.editingLabels();
    const NqLabelVector& values = endEffector.editableValues();
    std::printf("%s\n", endEffector.endEffectorTooltip().value().c_str());
    for (unsigned i = 0; i < labels.size(); ++i) {
        std::printf("  %-24s %s\n", labels[i].value().c_str(), values[i].value().c_str());
    }
}

} // namespace

int main() {
    // An interface knows the abstract class only.
    const std::unique_ptr<NqEndEffector> endEffector = std::make_unique<NqPointEndEffector>();
    show(*endEffector);

    // Change single values, then apply them all. Texts that don't fit are harmless: an unknown profile type
    // leaves the old one.
    endEffector->setEditableValue(2, "0.12");
    endEffector->setEditableValue(3, "0.25");
    endEffector->setEditableValue(6, "as fast as light");
    endEffector->setEditableValues();
    show(*endEffector);

    const auto& point = dynamic_cast<const NqPointEndEffector&>(*endEffector);
    return point.point() == NqVector(0.0, 0.0, 0.12) && point.motionThreshold() == 0.25 &&
                   point.pointMotionFilter().filteringMode() == NqPointMotionFilter::Trapezoidal
               ? 0
               : 1;
}
