#include "host/qorabsTriblockTranslator.h"

#include "host/qorabsOutputSink.h"

qorabsTranslationStatus qorabsTriblockTranslator::create_item(qorabsOutputSink& sink,
                                                              const qorabsAttributeSet& attrs,
                                                              const utString& mangled)
{
    giTriBlock tb;
    qorabsTranslationStatus status = create_triblock(tb);
    if (status.ok()) {
        sink.triblock(attrs, mangled, status, tb);
    } else {
        giTriBlock empty;
        sink.triblock(attrs, mangled, status, empty);
    }
    return status;
}

qorabsTranslationStatus qorabsTriblockTranslator::create_triblock(giTriBlock&)
{
    return qorabsTranslationStatus(qorabsTranslationStatus::failure);
}
