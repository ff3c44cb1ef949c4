#pragma once
// qorabsPointCloudTranslator: an annotation translator whose item is a
// coloured point cloud. Slot 12 data follows the annotation's create_annotation.
#include "host/annPointCloudData.h"
#include "host/qorabsAnnotationTranslator.h"

class qorabsPointCloudTranslator : public qorabsAnnotationTranslator {
public:
    using qorabsAnnotationTranslator::qorabsAnnotationTranslator;

    // Asks data() for the cloud and hands it to the sink (empty data when
    // there is none; status 1 then). Deletes the data when release was set.
    qorabsTranslationStatus create_annotation(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                              const utString& mangled) override;
    // 12. The cloud's data, or null. Sets release to 1 when the caller takes
    // the data (and deletes it), 0 when the translator keeps it. The base has
    // none.
    virtual annPointCloudData* data(int& release);
};
