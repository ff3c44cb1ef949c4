#include "translate/vmiSplineTranslator.h"

vmiSplineTranslator::vmiSplineTranslator(const qorabsContext& context, const vmiSpline& wrapper)
    : qorabsCurveTranslator(context), wrapper_(wrapper)
{
}

void vmiSplineTranslator::attributes(qorabsAttributeSet& set)
{
    qorabsCurveTranslator::attributes(set);
    wrapper_.set_attributes(set);
}

vmiSplineTranslator::~vmiSplineTranslator() = default;

qorabsTranslationStatus vmiSplineTranslator::create_curve(rnxCurvePtr3& c)
{
    return qorabsTranslationStatus(wrapper_.convert(c) ? qorabsTranslationStatus::success
                                                       : qorabsTranslationStatus::failure);
}
