#include <nqControlCore/endeffector/NqEditableLists.h>

#include <nqControlCore/foundation/text/NqTextConversion.h>

std::string NqEditableLists::join(const NqLabelVector& labels) {
    std::string text;
    for (unsigned i = 0; i < labels.size(); ++i) {
        text += (i == 0 ? "" : ",") + labels[i].value();
    }
    return text;
}

std::string NqEditableLists::join(const NqXmlRealVector& numbers) {
    NqLabelVector labels;
    for (const double number : numbers) {
        labels.pushBack(NqDOUBLE2STRING(number));
    }
    return join(labels);
}

void NqEditableLists::split(const std::string& text, NqLabelVector& labels) {
    labels.clear();
    if (text.empty()) {
        return;
    }
    std::size_t start = 0;
    for (std::size_t comma = text.find(','); comma != std::string::npos; comma = text.find(',', start)) {
        labels.pushBack(text.substr(start, comma - start));
        start = comma + 1;
    }
    labels.pushBack(text.substr(start));
}

void NqEditableLists::split(const std::string& text, NqXmlRealVector& numbers) {
    NqLabelVector labels;
    split(text, labels);
    numbers.clear();
    for (const auto& label : labels) {
        numbers.pushBack(NqSTRING2DOUBLE(label));
    }
}
