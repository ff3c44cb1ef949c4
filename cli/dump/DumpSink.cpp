#include "cli/dump/DumpSink.h"

DumpItem& DumpSink::add(DumpItem::Kind kind, const qorabsAttributeSet& attrs, const utString& mangled)
{
    auto item = std::make_unique<DumpItem>();
    item->kind = kind;
    item->mangled = mangled.str();
    if (const qorabsName* name = attrs.name()) item->name = name->name().str();
    if (const qorabsLayer* layer = attrs.layer()) {
        item->has_layer = true;
        item->level = layer->level();
        item->layer_name = layer->name().str();
    }
    if (const qorabsColour* colour = attrs.colour()) {
        item->has_colour = true;
        item->colour = colour->index();
    }
    DumpItem& placed = *item;
    (open_.empty() ? top_ : open_.back()->children).push_back(std::move(item));
    return placed;
}

void DumpSink::begin_group(const qorabsAttributeSet& attrs, const utString& mangled, const giXform3& xform)
{
    DumpItem& g = add(DumpItem::group, attrs, mangled);
    g.xform = xform;
    open_.push_back(&g);
}

void DumpSink::end_group()
{
    // An unmatched end would be the walk's slip; there is no group to close.
    if (!open_.empty()) open_.pop_back();
}

void DumpSink::triblock(const qorabsAttributeSet& attrs, const utString& mangled,
                        const qorabsTranslationStatus& status, const giTriBlock& block)
{
    DumpItem& t = add(DumpItem::triblock, attrs, mangled);
    t.status = status.value();
    // What a failed conversion left behind is not part of what the host got.
    if (!status.ok()) return;
    if (summary_) {
        t.points_digest = ArrayDigest::of(block.vertices() ? block.vertices()->values() : t.points);
        t.triangles_digest = ArrayDigest::of(block.triangles() ? block.triangles()->values() : t.triangles);
        return;
    }
    if (const giNodeXYZ* v = block.vertices()) t.points = v->values();
    if (const giTriArr* tr = block.triangles()) t.triangles = tr->values();
}

void DumpSink::curve(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
                     const rnxCurvePtr3& curve)
{
    DumpItem& c = add(DumpItem::curve, attrs, mangled);
    c.status = status.value();
    if (status.ok()) c.nurb = curve;
}

void DumpSink::pointcloud(const qorabsAttributeSet& attrs, const utString& mangled, const annPointCloudData& data)
{
    DumpItem& p = add(DumpItem::pointcloud, attrs, mangled);
    if (summary_) {
        p.points_digest = ArrayDigest::of(data.points() ? data.points()->values() : p.points);
        p.colours_digest = ArrayDigest::of(data.colours() ? data.colours()->values() : p.colours);
        return;
    }
    if (const giNodeXYZ* v = data.points()) p.points = v->values();
    if (const annColArr* c = data.colours()) p.colours = c->values();
}
