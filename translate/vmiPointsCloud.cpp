#include "translate/vmiPointsCloud.h"

#include "archive/vmiObjCloud.h"
#include "curves/m03DPoint.h"
#include "translate/vmiNewTranslator.h"
#include "translate/vmiPointsCloudTranslator.h"
#include "translate/vmiSetAttributes.h"

int vmiPointsCloud::convert(annPointCloudData& d) const
{
    giNodeXYZ* points = d.features().ensure<giNodeXYZ>();
    annColArr* colours = d.features().ensure<annColArr>();
    if (!points || !colours)
        return 0;
    const int n = record_ && record_->has_points() && record_->size() > 0 ? record_->size() : 0;
    if (!points->resize(n) || !colours->resize(n)) {
        points->clear();
        colours->clear();
        return 0;
    }
    for (int k = 0; k < n; k++) {
        const m03DPoint p = record_->point(k);
        points->set(k, giPoint3(p.x(), p.y(), p.z()));
        const int packed = record_->point_colour(k);
        colours->set(k, giColour(packed >> 16, packed >> 8, packed, 0));
    }
    return 1;
}

void vmiPointsCloud::set_attributes(qorabsAttributeSet& set) const
{
    vmi_set_attributes(set, POINTCLOUD, record_, false);
}

qorabsTranslatorcoPrf vmiPointsCloud::make_translator(const qorabsContext& context) const
{
    return vmi_new_translator<vmiPointsCloudTranslator>(context, *this);
}
