#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <array>
#include <bit>
#include <istream>
#include <limits>
#include <ostream>
#include <string_view>

namespace {

constexpr std::string_view kBinaryMark = "NqReArr1";

void putNatural(std::ostream& stream, std::uint64_t value, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i) {
        stream.put(static_cast<char>(value >> (8 * i) & 0xffu));
    }
}

bool getNatural(std::istream& stream, std::uint64_t& value, unsigned bytes) {
    std::array<char, 8> raw{};
    if (!stream.read(raw.data(), static_cast<std::streamsize>(bytes))) {
        return false;
    }
    value = 0;
    for (unsigned i = bytes; i-- > 0;) {
        value = value << 8 | static_cast<unsigned char>(raw[i]);
    }
    return true;
}

} // namespace

void NqReArray::dump(std::ostream& stream) const {
    for (const Row& row : m_Rows) {
        const char* separator = "";
        for (const double entry : row) {
            stream << separator << NqDOUBLE2STRING(entry);
            separator = " ";
        }
        stream << '\n';
    }
}

void NqReArray::dumpMath(std::ostream& stream) const {
    const char* rowSeparator = "";
    stream << '{';
    for (const Row& row : m_Rows) {
        stream << rowSeparator << '{';
        rowSeparator = ", ";
        const char* separator = "";
        for (const double entry : row) {
            std::string number = NqDOUBLE2STRING(entry);
            if (const auto exponent = number.find('e'); exponent != std::string::npos) {
                number.replace(exponent, 1, "*^");
            }
            stream << separator << number;
            separator = ", ";
        }
        stream << '}';
    }
    stream << "}\n";
}

bool NqReArray::writeBin(std::ostream& stream) const {
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    if (!isRectangular() || m_Rows.size() > most || columns() > most) {
        return refuse("writeBin");
    }
    stream << kBinaryMark;
    putNatural(stream, m_Rows.size(), 4);
    for (const Row& row : m_Rows) {
        putNatural(stream, row.size(), 4);
        for (const double entry : row) {
            putNatural(stream, std::bit_cast<std::uint64_t>(entry), 8);
        }
    }
    return stream.good();
}

bool NqReArray::readBin(std::istream& stream) {
    std::array<char, kBinaryMark.size()> mark{};
    std::uint64_t rowCount = 0;
    bool sound = stream.read(mark.data(), mark.size()) &&
                 std::string_view(mark.data(), mark.size()) == kBinaryMark && getNatural(stream, rowCount, 4);
    std::vector<Row> read;
    for (std::uint64_t i = 0; sound && i < rowCount; ++i) {
        std::uint64_t length = 0;
        sound = getNatural(stream, length, 4) && (i == 0 || length == read.front().size());
        Row row;
        for (std::uint64_t j = 0; sound && j < length; ++j) {
            std::uint64_t bits = 0;
            sound = getNatural(stream, bits, 8);
            row.push_back(std::bit_cast<double>(bits));
        }
        read.push_back(std::move(row));
    }
    if (!sound) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqReArray::readBin(): not a whole array\n");
        return false;
    }
    m_Rows = std::move(read);
    return true;
}
