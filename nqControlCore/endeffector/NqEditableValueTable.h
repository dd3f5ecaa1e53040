#pragma once

#include <nqControlCore/endeffector/NqEditableModeWords.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

/// A list of texts: link labels, editing labels, editable values.
using NqLabelVector = NqXmlVectorType<NqXmlBasicType<std::string>>;

/// The editable values of an end-effector class, in their order. List, count, labels, tooltips and both
/// conversions come from this one table, which each class makes once.
///
/// The makers of rows take a `part`, a callable that gives the field or member object that the value belongs
/// to, for a constant object and for another one: `[](auto& e) -> auto& { return e.m_Filter; }`.
template <typename Class>
class NqEditableValueTable {
public:
    /// One value: how it is called, told, printed and parsed.
    struct Row {
        std::string label;
        std::string tooltip;
        std::function<std::string(const Class&)> print;
        std::function<void(Class&, const std::string&)> parse;
    };

    NqEditableValueTable(std::initializer_list<Row> rows) : m_Rows(rows) {}

    unsigned size() const { return static_cast<unsigned>(m_Rows.size()); }
    const Row& operator[](std::size_t index) const { return m_Rows[index]; }

    /// A real number, from a getter and a setter of the part.
    template <typename Part, typename Get, typename Set>
    static Row number(std::string label, std::string tooltip, Part part, Get get, Set set) {
        return {std::move(label), std::move(tooltip),
                [=](const Class& object) { return NqDOUBLE2STRING(std::invoke(get, part(object))); },
                [=](Class& object, const std::string& text) {
                    std::invoke(set, part(object), NqSTRING2DOUBLE(text));
                }};
    }

    /// One component of a vector, written straight into it.
    template <typename Part>
    static Row component(std::string label, std::string tooltip, Part part, unsigned index) {
        return {std::move(label), std::move(tooltip),
                [=](const Class& object) { return NqDOUBLE2STRING(part(object)[index]); },
                [=](Class& object, const std::string& text) { part(object)[index] = NqSTRING2DOUBLE(text); }};
    }

    /// A flag, "1" or "0", from a getter and a setter of the object; any text but exactly "0" is true.
    template <typename Get, typename Set>
    static Row flag(std::string label, std::string tooltip, Get get, Set set) {
        return {std::move(label), std::move(tooltip),
                [=](const Class& object) { return NqINT2STRING(std::invoke(get, object) ? 1 : 0, 10); },
                [=](Class& object, const std::string& text) { std::invoke(set, object, text != "0"); }};
    }

    /// The filtering mode of a motion filter, as a word.
    template <typename Part>
    static Row modeWord(std::string label, std::string tooltip, Part part,
                        NqEditableModeWords::Accepts accepts = NqEditableModeWords::Accepts::ThreeModes) {
        return {std::move(label), std::move(tooltip),
                [=](const Class& object) { return NqEditableModeWords::print(part(object)); },
                [=](Class& object, const std::string& text) {
                    NqEditableModeWords::apply(text, part(object), accepts);
                }};
    }

private:
    std::vector<Row> m_Rows;
};
