#pragma once
// vmiPolylineTranslator: the host's curve translator for one polyline record;
// it forwards to its own copy of the vmiPolyline wrapper.
#include "host/qorabsCurveTranslator.h"
#include "translate/vmiPolyline.h"

class vmiPolylineTranslator : public qorabsCurveTranslator {
public:
    vmiPolylineTranslator(const qorabsContext& context, const vmiPolyline& wrapper);

    // 2. The base's attributes, then the wrapper's.
    void attributes(qorabsAttributeSet& set) override;
    // 9.
    ~vmiPolylineTranslator() override;
    // 11. Status 0 when the wrapper's convert made a valid curve, else 1.
    qorabsTranslationStatus create_curve(rnxCurvePtr3& c) override;

    const vmiPolyline& wrapper() const { return wrapper_; }

private:
    vmiPolyline wrapper_;
};
