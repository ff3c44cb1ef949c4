#include "translate/vmiTriblockTranslator.h"

vmiTriblockTranslator::vmiTriblockTranslator(const qorabsContext& context, const vmiTriBlock& wrapper)
    : qorabsTriblockTranslator(context), wrapper_(wrapper)
{
}

void vmiTriblockTranslator::attributes(qorabsAttributeSet& set)
{
    qorabsTriblockTranslator::attributes(set);
    wrapper_.set_attributes(set);
}

vmiTriblockTranslator::~vmiTriblockTranslator() = default;

qorabsTranslationStatus vmiTriblockTranslator::create_triblock(giTriBlock& tb)
{
    return qorabsTranslationStatus(wrapper_.convert(tb) ? qorabsTranslationStatus::success
                                                        : qorabsTranslationStatus::failure);
}
