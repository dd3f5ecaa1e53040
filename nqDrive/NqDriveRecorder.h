#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// The history of a run in bounded memory. When the table is full, every second row goes, and from then on
/// only every second step gets a row. Of two rows of a thinned table the first has the least and the second
/// the greatest of all that determinant, slowing, rates, errors, speeds and accelerations were from the one
/// to the row behind the other, so that no peak is lost; the other columns are those of the row's own step.
/// Nothing is allocated after construction, unless every step is to be kept.
class NqDriveRecorder {
public:
    /// One row; the vectors have an entry for each joint, for each end-effector, or for each part of their
    /// motion.
    struct Sample {
        double time = 0.0;        ///< s
        double wayPoint = 0.0;    ///< number of the way point that is driven to, from 1
        double determinant = 0.0; ///< of the solver's square system
        double slowing = 1.0;     ///< share of the commanded step that was made
        const double* positions;  ///< rad or m
        const double* rates;      ///< rad/s or m/s
        const NqCoordinateSystemTransformation* placements; ///< in the system frame
        const double* errors;                               ///< left to the target
        const double* speeds;
        const double* accelerations;
        NqCoordinateSystemTransformation base{}; ///< in the system frame
    };

    NqDriveRecorder(std::size_t joints, std::size_t endEffectors, std::size_t parts,
                    bool keepsEveryStep = false, std::size_t capacity = 16384);

    /// Takes up a step, or leaves it out while the table is thinned; `isKept` takes it up all the same.
    void add(const Sample& sample, bool isKept = false);

    std::size_t joints() const { return m_Joints; }
    std::size_t endEffectors() const { return m_EndEffectors; }
    std::size_t rows() const { return m_Rows; }
    /// How many steps lie between two rows.
    std::uint64_t stride() const { return m_Stride; }

    double time(std::size_t row) const { return at(row, 0); }
    double wayPoint(std::size_t row) const { return at(row, 1); }
    double determinant(std::size_t row) const { return at(row, 2); }
    double slowing(std::size_t row) const { return at(row, 3); }
    double position(std::size_t row, std::size_t joint) const { return at(row, kHead + joint); }
    double rate(std::size_t row, std::size_t joint) const { return at(row, kHead + m_Joints + joint); }
    NqCoordinateSystemTransformation placement(std::size_t row, std::size_t endEffector) const;
    NqCoordinateSystemTransformation base(std::size_t row) const { return placement(row, m_EndEffectors); }
    NqVector point(std::size_t row, std::size_t endEffector) const {
        return placement(row, endEffector).translation();
    }
    double error(std::size_t row, std::size_t part) const { return at(row, partColumn(part)); }
    double speed(std::size_t row, std::size_t part) const { return at(row, partColumn(part) + 1); }
    double acceleration(std::size_t row, std::size_t part) const { return at(row, partColumn(part) + 2); }

    /// One quantity over all rows: `column(&NqDriveRecorder::rate, 2)`.
    template <typename... Index>
    std::vector<double> column(double (NqDriveRecorder::*quantity)(std::size_t, Index...) const,
                               Index... index) const {
        std::vector<double> values(m_Rows);
        for (std::size_t row = 0; row < m_Rows; ++row) {
            values[row] = (this->*quantity)(row, index...);
        }
        return values;
    }

private:
    static constexpr std::size_t kHead = 4;
    static constexpr std::size_t kPerEffector = 7;
    static constexpr std::size_t kPerPart = 3;

    std::size_t effectorColumn(std::size_t endEffector) const {
        return kHead + 2 * m_Joints + kPerEffector * endEffector;
    }
    std::size_t partColumn(std::size_t part) const {
        return effectorColumn(m_EndEffectors + 1) + kPerPart * part; // the base is behind the end-effectors
    }
    double at(std::size_t row, std::size_t column) const { return m_Table[row * m_Width + column]; }
    void thin();
    void write(const Sample& sample, double* out) const;
    void mergeExtremes(const double* row, double* least, double* greatest) const;
    double* row(std::size_t number) { return &m_Table[number * m_Width]; }

    std::size_t m_Joints;
    std::size_t m_EndEffectors;
    std::size_t m_Parts;
    std::size_t m_Width;
    std::size_t m_Capacity;
    bool m_KeepsEveryStep;
    std::vector<double> m_Table;
    std::vector<double> m_Sample;   ///< a step that gets no row
    std::vector<double> m_Greatest; ///< for the row that is still to come
    std::size_t m_Rows = 0;
    std::uint64_t m_Stride = 1;
    std::uint64_t m_Steps = 0;
};
