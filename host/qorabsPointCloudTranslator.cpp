#include "host/qorabsPointCloudTranslator.h"

#include <memory>

#include "host/qorabsOutputSink.h"

qorabsTranslationStatus qorabsPointCloudTranslator::create_annotation(qorabsOutputSink& sink,
                                                                      const qorabsAttributeSet& attrs,
                                                                      const utString& mangled)
{
    int release = 0;
    annPointCloudData* d = data(release);
    std::unique_ptr<annPointCloudData> owned(release ? d : nullptr);
    if (!d) {
        annPointCloudData empty;
        sink.pointcloud(attrs, mangled, empty);
        return qorabsTranslationStatus(qorabsTranslationStatus::failure);
    }
    sink.pointcloud(attrs, mangled, *d);
    return qorabsTranslationStatus();
}

annPointCloudData* qorabsPointCloudTranslator::data(int& release)
{
    release = 0;
    return nullptr;
}
