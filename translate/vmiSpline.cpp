#include "translate/vmiSpline.h"

#include "archive/vmiObjSpline.h"
#include "translate/vmiNewTranslator.h"
#include "translate/vmiSetAttributes.h"
#include "translate/vmiSplineTranslator.h"

int vmiSpline::convert(rnxCurvePtr3& c) const
{
    if (!record_)
        return 0;
    record_->nurb(c);
    return c ? c->is_valid() : 0;
}

void vmiSpline::set_attributes(qorabsAttributeSet& set) const
{
    vmi_set_attributes(set, CURVE, record_, true);
}

qorabsTranslatorcoPrf vmiSpline::make_translator(const qorabsContext& context) const
{
    return vmi_new_translator<vmiSplineTranslator>(context, *this);
}
