#include "host/qorabsCurveTranslator.h"

#include "host/qorabsOutputSink.h"

qorabsTranslationStatus qorabsCurveTranslator::create_item(qorabsOutputSink& sink,
                                                           const qorabsAttributeSet& attrs,
                                                           const utString& mangled)
{
    rnxCurvePtr3 c;
    qorabsTranslationStatus status = create_curve(c);
    if (!status.ok() || !c) {
        c.reset();
        status = qorabsTranslationStatus(qorabsTranslationStatus::failure);
    }
    sink.curve(attrs, mangled, status, c);
    return status;
}

qorabsTranslationStatus qorabsCurveTranslator::create_curve(rnxCurvePtr3&)
{
    return qorabsTranslationStatus(qorabsTranslationStatus::failure);
}
