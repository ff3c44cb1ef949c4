#pragma once
// vmiPointsCloudTranslator: the host's point-cloud translator for one cloud
// record; it forwards to its own copy of the vmiPointsCloud wrapper.
#include "host/qorabsPointCloudTranslator.h"
#include "translate/vmiPointsCloud.h"

class vmiPointsCloudTranslator : public qorabsPointCloudTranslator {
public:
    vmiPointsCloudTranslator(const qorabsContext& context, const vmiPointsCloud& wrapper);

    // 2. The base's attributes, then the wrapper's.
    void attributes(qorabsAttributeSet& set) override;
    // 9.
    ~vmiPointsCloudTranslator() override;
    // 12. New data filled by the wrapper's convert; the caller takes it
    // (release = 1). Null when it cannot be allocated.
    annPointCloudData* data(int& release) override;

    const vmiPointsCloud& wrapper() const { return wrapper_; }

private:
    vmiPointsCloud wrapper_;
};
