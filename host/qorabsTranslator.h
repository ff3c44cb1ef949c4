#pragma once
// qorabsTranslator: the base of every translator a library hands the host.
// One translator stands for one item: a group (qorabsCompoundTranslator) or a
// piece of geometry (qorabsTriblockTranslator, qorabsCurveTranslator,
// qorabsPointCloudTranslator). The host pulls the item out with process();
// see qorabsOutputSink.h for the walk.
//
// The virtual operations are a binary contract with the host: their slots
// are in the order declared here (1 process ... 10 create_item), and the
// family classes append theirs after slot 10. A library overrides, never
// reorders.
#include <iosfwd>

#include "host/giXform3.h"
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslationStatus.h"
#include "host/qorabsTranslatorcoPrf.h"
#include "host/utString.h"

class qorabsContext;
class qorabsNameMangler;
class qorabsOutputSink;

class qorabsTranslator {
public:
    qorabsTranslator() = default;
    explicit qorabsTranslator(const qorabsContext& context) : context_(&context) {}
    qorabsTranslator(const qorabsTranslator&) = delete;
    qorabsTranslator& operator=(const qorabsTranslator&) = delete;

    // 1. The walk: fills the attributes, mangles the NAME with the parent
    // group's mangler (null at the top) and creates the item into the sink.
    virtual qorabsTranslationStatus process(qorabsOutputSink& sink, const qorabsNameMangler* mangler);
    // 2. Fills the item's attributes; the base adds none.
    virtual void attributes(qorabsAttributeSet& set);
    // 3. A placement the host applies on top of the item's own (groups only).
    virtual void set_transform(const giXform3& xform);
    // 4. Non-zero when the translator can hand over items that are not
    // standard parts; the base says 0.
    virtual int non_spts_supported() const;
    // 5. Members of a group; 0 for geometry.
    virtual int num_translators() const;
    // 6. Member `index` of a group, in the walk's order; empty outside.
    virtual qorabsTranslatorcoPrf current_translator(int index) const;
    // 7, 8. The host's message streams. A silent library never writes to them.
    virtual void set_output(std::ostream* out);
    virtual void set_error(std::ostream* err);
    // 9.
    virtual ~qorabsTranslator();
    // 10. Creates the item into the sink (each family class provides it).
    virtual qorabsTranslationStatus create_item(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                                const utString& mangled) = 0;

    const qorabsContext* context() const { return context_; }
    bool has_transform() const { return has_transform_; }
    const giXform3& transform() const { return transform_; }
    std::ostream* output() const { return output_; }
    std::ostream* error() const { return error_; }

private:
    const qorabsContext* context_ = nullptr;
    giXform3 transform_;
    bool has_transform_ = false;
    std::ostream* output_ = nullptr;
    std::ostream* error_ = nullptr;
};
