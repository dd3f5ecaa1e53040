#pragma once

#include <nqControlCore/endeffector/NqEditableLists.h>
#include <nqControlCore/endeffector/NqEditableModeWords.h>
#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// The editable values of an end-effector class, in their order. List, count, labels, tooltips and both
/// conversions come from this one table, which each class makes once.
///
/// The makers of rows take a `part`, a callable that gives the field or member object that the value belongs
/// to, for a constant object and for another one: `[](auto& e) -> auto& { return e.m_Filter; }`.
template <typename Class>
class NqEditableValueTable {
public:
    /// One value: how it is called, told, printed and parsed. Parsing sees the whole list and the place of
    /// the row in it.
    struct Row {
        std::string label;
        std::string tooltip;
        std::function<std::string(const Class&)> print;
        std::function<void(Class&, const NqLabelVector&, unsigned)> parse;
    };

    NqEditableValueTable(std::initializer_list<Row> rows) : m_Rows(rows) {}

    unsigned size() const { return static_cast<unsigned>(m_Rows.size()); }
    const Row& operator[](std::size_t index) const { return m_Rows[index]; }

    /// A real number, from a getter and a setter of the part.
    template <typename Part, typename Get, typename Set>
    static Row number(std::string label, std::string tooltip, Part part, Get get, Set set) {
        return row(
            std::move(label), std::move(tooltip),
            [=](const Class& object) { return NqDOUBLE2STRING(std::invoke(get, part(object))); },
            [=](Class& object, const std::string& text) {
                std::invoke(set, part(object), NqSTRING2DOUBLE(text));
            });
    }

    /// One component of a vector, written straight into it.
    template <typename Part>
    static Row component(std::string label, std::string tooltip, Part part, unsigned index) {
        return row(
            std::move(label), std::move(tooltip),
            [=](const Class& object) { return NqDOUBLE2STRING(part(object)[index]); },
            [=](Class& object, const std::string& text) { part(object)[index] = NqSTRING2DOUBLE(text); });
    }

    /// The angle of an orientation, which a getter and a setter of the part give. The next three rows must be
    /// those of its axis; parsing this one sets the orientation from all four.
    template <typename Part, typename Get, typename Set>
    static Row angle(std::string label, std::string tooltip, Part part, Get get, Set set) {
        return {std::move(label), std::move(tooltip),
                [=](const Class& object) {
                    return NqDOUBLE2STRING(angleAxis(std::invoke(get, part(object))).first);
                },
                [=](Class& object, const NqLabelVector& values, unsigned index) {
                    const NqVector axis(NqSTRING2DOUBLE(values[index + 1]),
                                        NqSTRING2DOUBLE(values[index + 2]),
                                        NqSTRING2DOUBLE(values[index + 3]));
                    std::invoke(set, part(object), NqOrientation(NqSTRING2DOUBLE(values[index]), axis));
                }};
    }

    /// One component of the axis of an orientation.
    template <typename Part, typename Get>
    static Row axis(std::string label, std::string tooltip, Part part, Get get, unsigned component) {
        return {std::move(label), std::move(tooltip),
                [=](const Class& object) {
                    return NqDOUBLE2STRING(angleAxis(std::invoke(get, part(object))).second[component]);
                },
                [](Class&, const NqLabelVector&, unsigned) {}};
    }

    /// A text, from a getter and a setter of the object.
    template <typename Get, typename Set>
    static Row text(std::string label, std::string tooltip, Get get, Set set) {
        return row(
            std::move(label), std::move(tooltip),
            [=](const Class& object) -> std::string { return std::invoke(get, object); },
            [=](Class& object, const std::string& text) { std::invoke(set, object, text); });
    }

    /// A list of labels or of real numbers, separated by commas, from a getter and a setter of the object.
    template <typename Get, typename Set>
    static Row list(std::string label, std::string tooltip, Get get, Set set) {
        using List = std::remove_cvref_t<std::invoke_result_t<Get, const Class&>>;
        return row(
            std::move(label), std::move(tooltip),
            [=](const Class& object) { return NqEditableLists::join(std::invoke(get, object)); },
            [=](Class& object, const std::string& text) {
                List list;
                NqEditableLists::split(text, list);
                std::invoke(set, object, list);
            });
    }

    /// A flag, "1" or "0", from a getter and a setter of the object; any text but exactly "0" is true.
    template <typename Get, typename Set>
    static Row flag(std::string label, std::string tooltip, Get get, Set set) {
        return row(
            std::move(label), std::move(tooltip),
            [=](const Class& object) { return NqINT2STRING(std::invoke(get, object) ? 1 : 0, 10); },
            [=](Class& object, const std::string& text) { std::invoke(set, object, text != "0"); });
    }

    /// Whether the constraint is hard.
    static Row hardConstraint() {
        return flag("Is Hard Constraint",
                    "Boolean flag (0/1) describing if this end effector should be treated as a hard or soft "
                    "constraint.  Soft constraint (=0) will give a best effort to achieve desired placement.",
                    &Class::isHardConstraint, &Class::setIsHardConstraint);
    }

    /// The filtering mode of a motion filter, as a word.
    template <typename Part>
    static Row modeWord(std::string label, std::string tooltip, Part part) {
        return row(
            std::move(label), std::move(tooltip),
            [=](const Class& object) { return NqEditableModeWords::print(part(object)); },
            [=](Class& object, const std::string& text) { NqEditableModeWords::apply(text, part(object)); });
    }

private:
    /// A row that is parsed from its own text alone.
    template <typename Print, typename Parse>
    static Row row(std::string label, std::string tooltip, Print print, Parse parse) {
        return {std::move(label), std::move(tooltip), print,
                [=](Class& object, const NqLabelVector& values, unsigned index) {
                    parse(object, values[index].value());
                }};
    }

    static std::pair<double, NqVector> angleAxis(const NqOrientation& orientation) {
        std::pair<double, NqVector> result;
        orientation.getAngleAxis(result.first, result.second);
        return result;
    }

    std::vector<Row> m_Rows;
};
