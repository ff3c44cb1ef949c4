#pragma once
// qorabsCompoundTranslator: a translator whose item is a compound object of
// the host (a group) holding the items of its member translators.
//
// Slots 11 to 22 follow the base's ten, in the order declared here. In the
// walk (create_item) a compound:
//   - opens its object: make_compound_object, which takes the placement
//     (xform), lets handle_spt_transform and then handle_conversion_transform
//     adjust it, and calls the sink's begin_group;
//   - creates its mangler (create_name_mangler);
//   - delivers each member in order with add_geometry (the member's
//     process with that mangler), then calls add_named_item(index) when the
//     member's status was 0, item_was_rejected(index, status) otherwise;
//   - closes the object (the sink's end_group). Its own status is 0.
#include <memory>
#include <vector>

#include "host/giXform3.h"
#include "host/qorabsNameMangler.h"
#include "host/qorabsTranslator.h"

class stoClass;

class qorabsCompoundTranslator : public qorabsTranslator {
public:
    // cls: the host class of the compound object; xform: its placement.
    qorabsCompoundTranslator(const stoClass* cls, const giXform3& xform, const qorabsContext& context);

    // Appends a member; an empty pointer is ignored.
    void add_translator(qorabsTranslatorcoPrf translator);
    const giXform3& xform() const { return xform_; }
    // What the last walk counted: members delivered, members rejected.
    int num_items() const { return num_items_; }
    int num_rejected() const { return num_rejected_; }

    int num_translators() const override;
    qorabsTranslatorcoPrf current_translator(int index) const override;
    qorabsTranslationStatus create_item(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                        const utString& mangled) override;

    // 11. Opens the compound object in the sink.
    virtual void make_compound_object(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                      const utString& mangled);
    // 12. Adjusts the placement of a standard part; the base leaves it.
    virtual void handle_spt_transform(giXform3& placement) const;
    // 13. Delivers one member into the open object.
    virtual qorabsTranslationStatus add_geometry(qorabsOutputSink& sink, qorabsTranslator& member,
                                                 const qorabsNameMangler* mangler);
    // 14. Member `index` became an item of the object; the base counts it.
    virtual void add_named_item(int index);
    // 15. The kind of compound, for the host's messages.
    virtual const char* type_name() const;
    // 16. Member `index` gave no item; the base counts it.
    virtual void item_was_rejected(int index, const qorabsTranslationStatus& status);
    // 17. The mangler for the members' names; the base has none (names stay).
    virtual std::unique_ptr<qorabsNameMangler> create_name_mangler() const;
    // 18. Applies the host's transform (set_transform) on top of the placement.
    virtual void handle_conversion_transform(giXform3& placement) const;
    // 19. The host class the compound object is made of.
    virtual const stoClass* compound_object_type() const;
    // 20. The name of the standard part the compound stands for; the base: empty.
    virtual utString spt_name() const;
    // 21. Attributes a host may pass on to the members; the base passes none.
    // The reference walk does not call it.
    virtual void add_inherited_attributes(qorabsAttributeSet& set) const;
    // 22. Non-zero when the compound is a structure (a part made of parts); the base: 0.
    virtual int is_structure() const;

private:
    const stoClass* class_;
    giXform3 xform_;
    std::vector<qorabsTranslatorcoPrf> members_;
    int num_items_ = 0;
    int num_rejected_ = 0;
};
