#pragma once

#include <nqControlCore/endeffector/NqEditableLists.h>
#include <nqControlCore/endeffector/NqEditableModeWords.h>
#include <nqControlCore/endeffector/NqEndEffectorDescription.h>
#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// What an editing interface shows of a value: how it is called, and what it is.
struct NqEditableTexts {
    std::string label;
    std::string tooltip;
};

/// The editable values of an end-effector class, in their order. List, count, labels, tooltips and both
/// conversions come from this one table, which each class makes once.
///
/// The makers of rows take a `part`, a callable that gives the field or member object that the value belongs
/// to, for a constant object and for another one: `[](auto& e) -> auto& { return e.m_Filter; }`. Without it
/// the value belongs to the object itself.
template <typename Class>
class NqEditableValueTable {
public:
    /// One value: its texts, and how it is printed and parsed. Parsing sees the whole list and the place of
    /// the row in it.
    struct Row {
        NqEditableTexts texts;
        std::function<std::string(const Class&)> print;
        std::function<void(Class&, const NqLabelVector&, unsigned)> parse;
    };

    /// Rows that stand together.
    using Rows = std::vector<Row>;

    NqEditableValueTable(std::initializer_list<Rows> groups) : m_Rows(together(groups)) {}

    /// Several groups of rows as one.
    static Rows together(std::initializer_list<Rows> groups) {
        Rows together;
        for (const Rows& rows : groups) {
            together.insert(together.end(), rows.begin(), rows.end());
        }
        return together;
    }

    unsigned size() const { return static_cast<unsigned>(m_Rows.size()); }

    /// What a class with this table tells about itself.
    NqEndEffectorDescription description(const char* endEffectorTooltip) const {
        NqEndEffectorDescription description;
        for (const Row& row : m_Rows) {
            description.labels.pushBack(row.texts.label);
            description.tooltips.pushBack(row.texts.tooltip);
        }
        description.tooltip = endEffectorTooltip;
        return description;
    }

    /// Prints all values into the list.
    void print(const Class& object, NqLabelVector& values) const {
        values.resize(size());
        for (unsigned i = 0; i < size(); ++i) {
            values[i] = m_Rows[i].print(object);
        }
    }

    /// Parses a list at least as long as the table.
    void parse(const NqLabelVector& values, Class& object) const {
        for (unsigned i = 0; i < size(); ++i) {
            m_Rows[i].parse(object, values, i);
        }
    }

    /// All rows of the table of a base class.
    template <typename Base>
    static Rows inherited(const NqEditableValueTable<Base>& table) {
        Rows rows;
        for (const auto& row : table.m_Rows) {
            rows.push_back({row.texts, row.print, row.parse});
        }
        return rows;
    }

    /// A real number, from a getter and a setter of the part.
    template <typename Part, typename Get, typename Set>
    static Rows number(std::string label, std::string tooltip, Part part, Get get, Set set) {
        return row(
            {std::move(label), std::move(tooltip)},
            [=](const Class& object) { return NqDOUBLE2STRING(std::invoke(get, part(object))); },
            [=](Class& object, const std::string& text) {
                std::invoke(set, part(object), NqSTRING2DOUBLE(text));
            });
    }
    template <typename Get, typename Set>
    static Rows number(std::string label, std::string tooltip, Get get, Set set) {
        return number(std::move(label), std::move(tooltip), theObject, get, set);
    }

    /// The three components of a vector, written straight into it.
    template <typename Part>
    static Rows vector(const NqEditableTexts (&texts)[3], Part part) {
        const auto component = [&](unsigned i) {
            return row(
                texts[i], [=](const Class& object) { return NqDOUBLE2STRING(part(object)[i]); },
                [=](Class& object, const std::string& text) { part(object)[i] = NqSTRING2DOUBLE(text); });
        };
        return together({component(0), component(1), component(2)});
    }

    /// The angle of an orientation and the three components of its axis, which a getter and a setter of the
    /// part give. Parsing the first row sets the orientation from all four.
    template <typename Part, typename Get, typename Set>
    static Rows orientation(const NqEditableTexts& angle, const NqEditableTexts (&axis)[3], Part part,
                            Get get, Set set) {
        const auto printAxis = [=](unsigned component) {
            return [=](const Class& object) {
                return NqDOUBLE2STRING(angleAxis(std::invoke(get, part(object))).second[component]);
            };
        };
        const auto keep = [](Class&, const NqLabelVector&, unsigned) {};
        return {{angle,
                 [=](const Class& object) {
                     return NqDOUBLE2STRING(angleAxis(std::invoke(get, part(object))).first);
                 },
                 [=](Class& object, const NqLabelVector& values, unsigned index) {
                     const NqVector v(NqSTRING2DOUBLE(values[index + 1]), NqSTRING2DOUBLE(values[index + 2]),
                                      NqSTRING2DOUBLE(values[index + 3]));
                     std::invoke(set, part(object), NqOrientation(NqSTRING2DOUBLE(values[index]), v));
                 }},
                {axis[0], printAxis(0), keep},
                {axis[1], printAxis(1), keep},
                {axis[2], printAxis(2), keep}};
    }
    template <typename Get, typename Set>
    static Rows orientation(const NqEditableTexts& angle, const NqEditableTexts (&axis)[3], Get get,
                            Set set) {
        return orientation(angle, axis, theObject, get, set);
    }

    /// The seven values of a frame, called "<kind>Frame Offset: X" and so on: its translation, then the angle
    /// and the axis of its orientation.
    template <typename Part>
    static Rows frame(const std::string& kind, Part part) {
        using T = NqCoordinateSystemTransformation;
        const auto offset = [&](unsigned i, const char* name, void (T::*set)(double)) {
            return number(
                kind + "Frame Offset: " + name,
                std::string("The ") + name +
                    " offset of the end effector frame (meters).  This is measured from the DH-Frame of the "
                    "link",
                part, [i](const T& f) { return f.translation()[i]; }, set);
        };
        const auto axis = [&](const char* name) -> NqEditableTexts {
            return {kind + "Frame Axis: " + name,
                    std::string(name) +
                        " component of the angle axis vector (meters).  Used for angle-axis orientation "
                        "offset of the end effector frame. This is measured from the DH-Frame of the link"};
        };
        return together(
            {offset(0, "X", &T::setTranslationX), offset(1, "Y", &T::setTranslationY),
             offset(2, "Z", &T::setTranslationZ),
             orientation({kind + "Frame Angle",
                          "Angle (radians).  Used for angle-axis orientation offset of the end effector "
                          "frame. This is measured from the DH-Frame of the link"},
                         {axis("X"), axis("Y"), axis("Z")}, part, &T::orientation, &T::setOrientation)});
    }

    /// A text, from a getter and a setter of the object.
    template <typename Get, typename Set>
    static Rows text(std::string label, std::string tooltip, Get get, Set set) {
        return row(
            {std::move(label), std::move(tooltip)},
            [=](const Class& object) -> std::string { return std::invoke(get, object); },
            [=](Class& object, const std::string& text) { std::invoke(set, object, text); });
    }

    /// A list of labels or of real numbers, separated by commas, from a getter and a setter of the object.
    template <typename Get, typename Set>
    static Rows list(std::string label, std::string tooltip, Get get, Set set) {
        using List = std::remove_cvref_t<std::invoke_result_t<Get, const Class&>>;
        return row(
            {std::move(label), std::move(tooltip)},
            [=](const Class& object) { return NqEditableLists::join(std::invoke(get, object)); },
            [=](Class& object, const std::string& text) {
                List list;
                NqEditableLists::split(text, list);
                std::invoke(set, object, list);
            });
    }

    /// A vector as three numbers separated by commas, written straight into it. Any other text leaves it and
    /// calls `refuse`.
    template <typename Part>
    static Rows vectorText(
        std::string label, std::string tooltip, Part part, void (*refuse)() = [] {}) {
        return row(
            {std::move(label), std::move(tooltip)},
            [=](const Class& object) {
                const NqVector& v = part(object);
                return NqEditableLists::join(NqXmlRealVector{v.x(), v.y(), v.z()});
            },
            [=](Class& object, const std::string& text) {
                NqXmlRealVector numbers;
                NqEditableLists::split(text, numbers);
                if (numbers.size() == 3) {
                    part(object) = NqVector(numbers[0], numbers[1], numbers[2]);
                } else {
                    refuse();
                }
            });
    }

    /// A flag, "1" or "0", from a getter and a setter of the object; any text but exactly "0" is true.
    template <typename Get, typename Set>
    static Rows flag(std::string label, std::string tooltip, Get get, Set set) {
        return row(
            {std::move(label), std::move(tooltip)},
            [=](const Class& object) { return NqINT2STRING(std::invoke(get, object) ? 1 : 0, 10); },
            [=](Class& object, const std::string& text) { std::invoke(set, object, text != "0"); });
    }

    /// Whether the constraint is hard.
    static Rows hardConstraint(
        std::string tooltip =
            "Boolean flag (0/1) describing if this end effector should be treated as a hard or soft "
            "constraint.  Soft constraint (=0) will give a best effort to achieve desired placement.") {
        return flag("Is Hard Constraint", std::move(tooltip), &Class::isHardConstraint,
                    &Class::setIsHardConstraint);
    }

    /// The filtering mode of a motion filter, as a word.
    template <typename Part>
    static Rows modeWord(std::string tooltip, Part part,
                         NqEditableModeWords::Set words = NqEditableModeWords::Set::Three) {
        return row(
            {"Velocity Profile Type", std::move(tooltip)},
            [=](const Class& object) { return NqEditableModeWords::print(part(object), words); },
            [=](Class& object, const std::string& text) {
                NqEditableModeWords::apply(text, part(object), words);
            });
    }

private:
    template <typename Other>
    friend class NqEditableValueTable;

    static constexpr auto theObject = [](auto& object) -> auto& { return object; };

    /// A row that is parsed from its own text alone.
    template <typename Print, typename Parse>
    static Rows row(NqEditableTexts texts, Print print, Parse parse) {
        return {{std::move(texts), print, [=](Class& object, const NqLabelVector& values, unsigned index) {
                     parse(object, values[index].value());
                 }}};
    }

    static std::pair<double, NqVector> angleAxis(const NqOrientation& orientation) {
        std::pair<double, NqVector> result;
        orientation.getAngleAxis(result.first, result.second);
        return result;
    }

    std::vector<Row> m_Rows;
};
