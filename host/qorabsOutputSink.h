#pragma once
// qorabsOutputSink: where a host receives what a library's translators
// deliver. A host implements it (writes its database, a file, a dump ...)
// and runs THE walk:
//
//     qorabsOutputSink& sink = ...;
//     for (int i = 0; i < input.num_objects(); ++i, ++input)
//         input.send_to(sink);      // = current translator's process(sink, nullptr)
//
// or, holding a translator t itself, t->process(sink, nullptr).
//
// process(sink, mangler) on any translator:
//   1. makes an empty qorabsAttributeSet and lets the translator fill it
//      (attributes);
//   2. takes the NAME it set (empty when none) and mangles it with the
//      mangler of the group it belongs to (mangler->do_mangling(name)); at
//      the top (mangler null) the mangled name is the name itself;
//   3. creates the item (create_item), which calls exactly one of:
//      - a group (compound translator): begin_group(attrs, mangled, xform),
//        then process(sink, m) on each member in the order the group holds
//        them, m being the group's own mangler (create_name_mangler; null
//        leaves names as they are), then end_group();
//      - a triangle-block translator: create_triblock(block), then
//        triblock(attrs, mangled, status, block);
//      - a curve translator: create_curve(curve), then
//        curve(attrs, mangled, status, curve);
//      - a point-cloud translator: data(release), then
//        pointcloud(attrs, mangled, data).
//   4. returns the item's status (0 success, 1 failure; a group: 0).
//
// What the sink can rely on:
// - Calls nest: every begin_group has its end_group, and the items between
//   them are the group's members, in order.
// - When status is 1 the geometry is empty (a block without vertices or
//   triangles, a null curve): what a failed conversion left behind is not
//   passed on. With status 0 a curve is never null.
// - attrs holds what the translator checked out, in that order (id(i));
//   COLOUR only when the translator set one.
// - The references are valid during the call only; a sink that keeps a curve
//   copies the shared pointer.
#include "host/annPointCloudData.h"
#include "host/giTriBlock.h"
#include "host/giXform3.h"
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslationStatus.h"
#include "host/rnxNurbCurve3.h"
#include "host/utString.h"

class qorabsOutputSink {
public:
    virtual ~qorabsOutputSink() = default;

    virtual void begin_group(const qorabsAttributeSet& attrs, const utString& mangled,
                             const giXform3& xform) = 0;
    virtual void end_group() = 0;
    virtual void triblock(const qorabsAttributeSet& attrs, const utString& mangled,
                          const qorabsTranslationStatus& status, const giTriBlock& block) = 0;
    virtual void curve(const qorabsAttributeSet& attrs, const utString& mangled,
                       const qorabsTranslationStatus& status, const rnxCurvePtr3& curve) = 0;
    virtual void pointcloud(const qorabsAttributeSet& attrs, const utString& mangled,
                            const annPointCloudData& data) = 0;
};
