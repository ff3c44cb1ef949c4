#include "translate/vmiPointsCloudTranslator.h"

#include <new>

vmiPointsCloudTranslator::vmiPointsCloudTranslator(const qorabsContext& context, const vmiPointsCloud& wrapper)
    : qorabsPointCloudTranslator(context), wrapper_(wrapper)
{
}

void vmiPointsCloudTranslator::attributes(qorabsAttributeSet& set)
{
    qorabsPointCloudTranslator::attributes(set);
    wrapper_.set_attributes(set);
}

vmiPointsCloudTranslator::~vmiPointsCloudTranslator() = default;

annPointCloudData* vmiPointsCloudTranslator::data(int& release)
{
    release = 1;
    annPointCloudData* d = new (std::nothrow) annPointCloudData();
    if (d)
        wrapper_.convert(*d);
    return d;
}
