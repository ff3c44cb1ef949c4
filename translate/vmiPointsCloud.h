#pragma once
// vmiPointsCloud: hands a point-cloud record (a scan image) to the host as
// coloured point data. It only points to the record; the translator keeps
// its own copy.
#include "host/annPointCloudData.h"
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslator.h"

class qorabsContext;
class vmiObjCloud;

class vmiPointsCloud {
public:
    explicit vmiPointsCloud(vmiObjCloud* record) : record_(record) {}
    vmiObjCloud* record() const { return record_; }

    // Sizes the data's point and colour features to the record's point count
    // and fills them: point k = (x, y, z), colour k = giColour(c >> 16, c >> 8,
    // c, 0) of the packed 0xRRGGBB c. 1, with empty features when there is no
    // record or no points; 0 only when the features cannot be had.
    int convert(annPointCloudData& d) const;
    // POINTCLOUD, NAME, LAYER; never COLOUR: the colours travel in the data.
    void set_attributes(qorabsAttributeSet& set) const;
    // A new vmiPointsCloudTranslator; empty if it cannot be allocated.
    qorabsTranslatorcoPrf make_translator(const qorabsContext& context) const;

private:
    vmiObjCloud* record_;
};
