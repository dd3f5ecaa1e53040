#include <nqControlCore/foundation/text/NqFoundCommon.h>

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <algorithm>

namespace NqFoundCommon {

bool csvString2RealVector(const std::string& text, NqXmlRealVector& vector) {
    std::vector<double> numbers;
    if (!nqTrimmed(text).empty()) {
        for (std::size_t start = 0; start <= text.size();) {
            const std::size_t end = std::min(text.find(',', start), text.size());
            if (!nqParseReal(std::string_view(text).substr(start, end - start), numbers.emplace_back())) {
                return false;
            }
            start = end + 1;
        }
    }
    vector = std::move(numbers);
    return true;
}

std::string realVector2CSVString(const NqXmlRealVector& vector) {
    std::string text;
    for (const double number : vector) {
        if (!text.empty()) {
            text += ',';
        }
        text += NqDOUBLE2STRING(number);
    }
    return text;
}

} // namespace NqFoundCommon
