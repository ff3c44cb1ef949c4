#include "host/qorabsCompoundTranslator.h"

#include <new>

#include "host/qorabsOutputSink.h"

qorabsCompoundTranslator::qorabsCompoundTranslator(const stoClass* cls, const giXform3& xform,
                                                   const qorabsContext& context)
    : qorabsTranslator(context), class_(cls), xform_(xform)
{
}

void qorabsCompoundTranslator::add_translator(qorabsTranslatorcoPrf translator)
{
    if (!translator)
        return;
    try {
        members_.push_back(std::move(translator));
    } catch (const std::bad_alloc&) {
    }
}

int qorabsCompoundTranslator::num_translators() const
{
    return static_cast<int>(members_.size());
}

qorabsTranslatorcoPrf qorabsCompoundTranslator::current_translator(int index) const
{
    if (index < 0 || index >= num_translators())
        return {};
    return members_[static_cast<std::size_t>(index)];
}

qorabsTranslationStatus qorabsCompoundTranslator::create_item(qorabsOutputSink& sink,
                                                              const qorabsAttributeSet& attrs,
                                                              const utString& mangled)
{
    num_items_ = 0;
    num_rejected_ = 0;
    make_compound_object(sink, attrs, mangled);
    std::unique_ptr<qorabsNameMangler> mangler = create_name_mangler();
    for (int i = 0; i < num_translators(); i++) {
        qorabsTranslationStatus status = add_geometry(sink, *members_[static_cast<std::size_t>(i)], mangler.get());
        if (status.ok())
            add_named_item(i);
        else
            item_was_rejected(i, status);
    }
    sink.end_group();
    return qorabsTranslationStatus();
}

void qorabsCompoundTranslator::make_compound_object(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                                    const utString& mangled)
{
    giXform3 placement = xform_;
    handle_spt_transform(placement);
    handle_conversion_transform(placement);
    sink.begin_group(attrs, mangled, placement);
}

void qorabsCompoundTranslator::handle_spt_transform(giXform3&) const {}

qorabsTranslationStatus qorabsCompoundTranslator::add_geometry(qorabsOutputSink& sink, qorabsTranslator& member,
                                                               const qorabsNameMangler* mangler)
{
    return member.process(sink, mangler);
}

void qorabsCompoundTranslator::add_named_item(int) { num_items_++; }

const char* qorabsCompoundTranslator::type_name() const { return "compound"; }

void qorabsCompoundTranslator::item_was_rejected(int, const qorabsTranslationStatus&) { num_rejected_++; }

std::unique_ptr<qorabsNameMangler> qorabsCompoundTranslator::create_name_mangler() const { return nullptr; }

void qorabsCompoundTranslator::handle_conversion_transform(giXform3& placement) const
{
    // An identity product would still turn -0.0 into 0.0 and 0 * inf into NaN:
    // a placement the host never touched is passed on bit for bit.
    if (has_transform())
        placement.premultiply(transform());
}

const stoClass* qorabsCompoundTranslator::compound_object_type() const { return class_; }

utString qorabsCompoundTranslator::spt_name() const { return utString(); }

void qorabsCompoundTranslator::add_inherited_attributes(qorabsAttributeSet&) const {}

int qorabsCompoundTranslator::is_structure() const { return 0; }
