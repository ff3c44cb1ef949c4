#include "host/qorabsAnnotationTranslator.h"

qorabsTranslationStatus qorabsAnnotationTranslator::create_item(qorabsOutputSink& sink,
                                                                const qorabsAttributeSet& attrs,
                                                                const utString& mangled)
{
    return create_annotation(sink, attrs, mangled);
}

qorabsTranslationStatus qorabsAnnotationTranslator::create_annotation(qorabsOutputSink&,
                                                                      const qorabsAttributeSet&,
                                                                      const utString&)
{
    return qorabsTranslationStatus(qorabsTranslationStatus::failure);
}
