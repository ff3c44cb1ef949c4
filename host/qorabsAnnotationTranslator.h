#pragma once
// qorabsAnnotationTranslator: a translator whose item is an annotation (text,
// markers, point clouds ...). Slot 11 create_annotation follows the base's ten.
#include "host/qorabsTranslator.h"

class qorabsAnnotationTranslator : public qorabsTranslator {
public:
    using qorabsTranslator::qorabsTranslator;

    qorabsTranslationStatus create_item(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                        const utString& mangled) override;
    // 11. Delivers the annotation to the sink. The base delivers nothing (1).
    virtual qorabsTranslationStatus create_annotation(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                                      const utString& mangled);
};
