#include "translate/vmiPolyline.h"

#include <new>

#include "archive/vmiObjPoly.h"
#include "curves/m03DVector.h"
#include "translate/vmiNewTranslator.h"
#include "translate/vmiPolylineTranslator.h"
#include "translate/vmiSetAttributes.h"

int vmiPolyline::convert(rnxCurvePtr3& c) const
{
    m03DVector* points = record_ ? record_->points_array() : nullptr;
    if (!points || !points->get_point_array() || points->size() < 1)
        return 0;
    const int n = points->size();
    rnxCurvePtr3 curve;
    try {
        curve = std::make_shared<rnxNurbCurve3>(n, 2);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    // A count the kernel refuses leaves an empty curve: no loop over it.
    if (curve->num_points() == n) {
        for (int k = 0; k < n; k++) {
            const m03DPoint& p = points->point(k);
            curve->set_point(k, giPoint3(p.x(), p.y(), p.z()));
            curve->set_weight(k, 1.0);
        }
        curve->set_knot(0, 0.0);
        curve->cancel_segments();
        for (int k = 1; k <= n - 1; k++) {
            curve->set_knot(k, static_cast<double>(k - 1) / static_cast<double>(n - 1));
            curve->cancel_segments();
        }
        curve->set_knot(n, 1.0);
        curve->cancel_segments();
        curve->set_knot(n + 1, 1.0);
        curve->cancel_segments();
    }
    c = curve;
    return c->is_valid();
}

void vmiPolyline::set_attributes(qorabsAttributeSet& set) const
{
    vmi_set_attributes(set, CURVE, record_, true);
}

qorabsTranslatorcoPrf vmiPolyline::make_translator(const qorabsContext& context) const
{
    return vmi_new_translator<vmiPolylineTranslator>(context, *this);
}
