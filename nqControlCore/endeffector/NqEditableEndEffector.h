#pragma once

#include <nqControlCore/endeffector/NqEditableValueTable.h>
#include <nqControlCore/endeffector/NqEndEffector.h>

/// How long a list of editable values must be to be applied.
enum class NqEditableLength { Exact, AtLeast };

/// The layer between an end-effector class and its base that serves its editable values from their table,
/// `Derived::editableTable()`. A list of a wrong length is ignored.
template <typename Derived, typename Base, NqEditableLength Length = NqEditableLength::Exact>
class NqEditableEndEffector : public Base {
public:
    const NqLabelVector& editableValues() const override {
        Derived::editableTable().print(static_cast<const Derived&>(*this), this->editableValueCache());
        return this->editableValueCache();
    }

    using Base::setEditableValues;
    void setEditableValues(const NqLabelVector& values) override {
        const unsigned expected = Derived::editableTable().size();
        if (values.size() == expected || (Length == NqEditableLength::AtLeast && values.size() > expected)) {
            Derived::editableTable().parse(values, static_cast<Derived&>(*this));
        }
    }
};

/// The base of a concrete end-effector class: the frame of a persistent class, and its editable values.
template <typename Derived, typename Base, NqEditableLength Length = NqEditableLength::Exact>
using NqConcreteEndEffector = NqXmlPersistent<Derived, NqEditableEndEffector<Derived, Base, Length>>;
