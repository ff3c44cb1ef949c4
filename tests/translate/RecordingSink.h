#pragma once
// A host's output sink for the tests: records every call of the walk as an
// event, with copies of what it received.
#include <string>
#include <vector>

#include "host/qorabsOutputSink.h"

struct SinkEvent {
    std::string kind;  // "begin", "end", "triblock", "curve", "pointcloud"
    int depth = 0;
    std::string name;
    std::string mangled;
    std::vector<int> attribute_ids;
    bool has_layer = false;
    int level = 0;
    std::string layer_name;
    bool has_colour = false;
    int colour = 0;
    int status = -1;
    giXform3 xform;
    std::vector<giPoint3> points;
    std::vector<giTriangle> triangles;
    std::vector<giColour> colours;
    bool has_triangle_feature = false;
    rnxCurvePtr3 curve;
};

class RecordingSink : public qorabsOutputSink {
public:
    std::vector<SinkEvent> events;

    void begin_group(const qorabsAttributeSet& attrs, const utString& mangled, const giXform3& xform) override
    {
        SinkEvent e = start("begin", attrs, mangled);
        e.xform = xform;
        events.push_back(e);
        depth_++;
    }
    void end_group() override
    {
        depth_--;
        SinkEvent e;
        e.kind = "end";
        e.depth = depth_;
        events.push_back(e);
    }
    void triblock(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
                  const giTriBlock& block) override
    {
        SinkEvent e = start("triblock", attrs, mangled);
        e.status = status.value();
        if (block.vertices())
            e.points = block.vertices()->values();
        if (block.triangles()) {
            e.triangles = block.triangles()->values();
            e.has_triangle_feature = true;
        }
        events.push_back(e);
    }
    void curve(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
               const rnxCurvePtr3& curve) override
    {
        SinkEvent e = start("curve", attrs, mangled);
        e.status = status.value();
        e.curve = curve;
        events.push_back(e);
    }
    void pointcloud(const qorabsAttributeSet& attrs, const utString& mangled, const annPointCloudData& data) override
    {
        SinkEvent e = start("pointcloud", attrs, mangled);
        if (data.points())
            e.points = data.points()->values();
        if (data.colours())
            e.colours = data.colours()->values();
        events.push_back(e);
    }

private:
    SinkEvent start(const char* kind, const qorabsAttributeSet& attrs, const utString& mangled) const
    {
        SinkEvent e;
        e.kind = kind;
        e.depth = depth_;
        e.mangled = mangled.str();
        for (int i = 0; i < attrs.size(); i++)
            e.attribute_ids.push_back(attrs.id(i));
        if (attrs.name())
            e.name = attrs.name()->name().str();
        if (attrs.layer()) {
            e.has_layer = true;
            e.level = attrs.layer()->level();
            e.layer_name = attrs.layer()->name().str();
        }
        if (attrs.colour()) {
            e.has_colour = true;
            e.colour = attrs.colour()->index();
        }
        return e;
    }
    int depth_ = 0;
};
