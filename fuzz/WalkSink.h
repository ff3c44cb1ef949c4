#pragma once
// WalkSink: the output sink of the fuzz targets. It reads every vertex,
// triangle, curve point, knot, weight, cloud point and colour it is handed,
// so that a length beyond what the plug-in filled shows under the
// sanitizers, and stops the run (a crash the fuzzer keeps) when the walk
// breaks what a host relies on: groups that do not nest, geometry behind a
// failed conversion, a successful curve that is null, a triangle naming a
// vertex its block does not have.
#include <cstdlib>

#include "host/annPointCloudData.h"
#include "host/giTriBlock.h"
#include "host/qorabsOutputSink.h"
#include "host/rnxNurbCurve3.h"

class WalkSink : public qorabsOutputSink {
public:
    void begin_group(const qorabsAttributeSet& attrs, const utString& mangled, const giXform3&) override
    {
        ++depth_;
        touch(attrs, mangled);
    }
    void end_group() override
    {
        expect(depth_ > 0);
        --depth_;
    }
    void triblock(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
                  const giTriBlock& block) override
    {
        touch(attrs, mangled);
        if (!status.ok())
            expect(block.num_vertices() == 0 && block.num_triangles() == 0);
        const int n = block.num_vertices();
        if (const giNodeXYZ* v = block.vertices())
            for (const giPoint3& p : v->values())
                add(p);
        if (const giTriArr* t = block.triangles())
            for (const giTriangle& tr : t->values())
                expect(tr.a() >= 0 && tr.a() < n && tr.b() >= 0 && tr.b() < n && tr.c() >= 0 && tr.c() < n);
    }
    void curve(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
               const rnxCurvePtr3& curve) override
    {
        touch(attrs, mangled);
        if (!status.ok()) {
            expect(!curve);
            return;
        }
        expect(curve != nullptr);
        for (const giPoint3& p : curve->points())
            add(p);
        for (double k : curve->knots())
            sum_ += k;
        for (double w : curve->weights())
            sum_ += w;
    }
    void pointcloud(const qorabsAttributeSet& attrs, const utString& mangled, const annPointCloudData& data) override
    {
        touch(attrs, mangled);
        if (const giNodeXYZ* v = data.points())
            for (const giPoint3& p : v->values())
                add(p);
        if (const annColArr* c = data.colours())
            for (const giColour& k : c->values())
                sum_ += k.r() + k.g() + k.b();
    }

    // Every group closed again once the walk is over.
    void finish() const { expect(depth_ == 0); }
    double sum() const { return sum_; }

private:
    static void expect(bool holds)
    {
        if (!holds)
            std::abort();
    }
    void touch(const qorabsAttributeSet& attrs, const utString& mangled)
    {
        for (int i = 0; i < attrs.size(); ++i)
            sum_ += attrs.id(i);
        sum_ += mangled.length();
    }
    void add(const giPoint3& p) { sum_ += p.x() + p.y() + p.z(); }

    int depth_ = 0;
    double sum_ = 0.0;
};
