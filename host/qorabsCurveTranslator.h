#pragma once
// qorabsCurveTranslator: a translator whose item is a NURBS curve.
// Slot 11 create_curve follows the base's ten.
#include "host/qorabsTranslator.h"
#include "host/rnxNurbCurve3.h"

class qorabsCurveTranslator : public qorabsTranslator {
public:
    using qorabsTranslator::qorabsTranslator;

    // Asks create_curve for the curve and hands it to the sink (null when the
    // status is 1).
    qorabsTranslationStatus create_item(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                        const utString& mangled) override;
    // 11. Fills c; status 0 when it holds a valid curve. The base makes none (1).
    virtual qorabsTranslationStatus create_curve(rnxCurvePtr3& c);
};
