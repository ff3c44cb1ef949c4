#include "translate/vmiPolylineTranslator.h"

vmiPolylineTranslator::vmiPolylineTranslator(const qorabsContext& context, const vmiPolyline& wrapper)
    : qorabsCurveTranslator(context), wrapper_(wrapper)
{
}

void vmiPolylineTranslator::attributes(qorabsAttributeSet& set)
{
    qorabsCurveTranslator::attributes(set);
    wrapper_.set_attributes(set);
}

vmiPolylineTranslator::~vmiPolylineTranslator() = default;

qorabsTranslationStatus vmiPolylineTranslator::create_curve(rnxCurvePtr3& c)
{
    return qorabsTranslationStatus(wrapper_.convert(c) ? qorabsTranslationStatus::success
                                                       : qorabsTranslationStatus::failure);
}
