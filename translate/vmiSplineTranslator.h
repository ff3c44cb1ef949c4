#pragma once
// vmiSplineTranslator: the host's curve translator for one spline record;
// it forwards to its own copy of the vmiSpline wrapper.
#include "host/qorabsCurveTranslator.h"
#include "translate/vmiSpline.h"

class vmiSplineTranslator : public qorabsCurveTranslator {
public:
    vmiSplineTranslator(const qorabsContext& context, const vmiSpline& wrapper);

    // 2. The base's attributes, then the wrapper's.
    void attributes(qorabsAttributeSet& set) override;
    // 9.
    ~vmiSplineTranslator() override;
    // 11. Status 0 when the wrapper's convert made a valid curve, else 1.
    qorabsTranslationStatus create_curve(rnxCurvePtr3& c) override;

    const vmiSpline& wrapper() const { return wrapper_; }

private:
    vmiSpline wrapper_;
};
