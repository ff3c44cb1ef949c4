#pragma once
// vmiGroupTranslator: the host's group translator for one node of the tree.
// It names the group, gives its members a vmiMangler with the group's name,
// and holds the members' translators: the child nodes' groups, or at a leaf
// the translators of its objects.
//
// Node translation builds it as:
//
//     std::shared_ptr<vmiGroupTranslator> g = vmiGroupTranslator::make(name, xform, context);
//     if (!g) return {};
//     g->add_translator(child->make_translator(context));   // each child, in order
//     g->add_object(object);                                // or each object, in order
//     return g;
#include <memory>

#include "host/qorabsGroupTranslator.h"

class vmiObject;

class vmiGroupTranslator : public qorabsGroupTranslator {
public:
    // A group of the host's group class (sto_class_annGroup()).
    vmiGroupTranslator(utString name, const giXform3& xform, const qorabsContext& context);
    // The same, allocated without throwing; null when it cannot be had.
    static std::shared_ptr<vmiGroupTranslator> make(utString name, const giXform3& xform,
                                                    const qorabsContext& context);

    // 2. NAME, the group's name; COLOUR only for a valid colour, and the
    // group's colour is a default one, which never is: kept as designed.
    void attributes(qorabsAttributeSet& set) override;
    // 9.
    ~vmiGroupTranslator() override;
    // 17. A vmiMangler with the group's name as prefix; null when it cannot
    // be allocated (the members' names then pass unchanged).
    std::unique_ptr<qorabsNameMangler> create_name_mangler() const override;

    // Adds the translator of object (vmi_object_translator); 0 when it has
    // none (null object, a type without a translator, no memory).
    int add_object(vmiObject* object);

    const utString& name() const { return name_; }

private:
    utString name_;
};
