#include "cli/dump/DumpSink.h"

#include <pthread.h>

#include <system_error>
#include <thread>

namespace {

// The digests of the two arrays of an item (a block's vertices and
// triangles, a cloud's points and colours), the first one on a second
// thread while this one takes the second, when the first holds at least
// this many bytes: below, starting a thread costs more than it saves.
constexpr std::size_t digest_apart_bytes = std::size_t(1) << 18;

template <class A, class B>
void digest_both(const std::vector<A>& a, const std::vector<B>& b, std::optional<ArrayDigest>& da,
                 std::optional<ArrayDigest>& db)
{
    // Asked of the system once, not for every item.
    static const bool two_processors = std::thread::hardware_concurrency() > 1;
    std::thread apart;
    if (a.size() * sizeof(A) >= digest_apart_bytes && two_processors) {
        try {
            apart = std::thread([&a, &da] {
                pthread_setname_np(pthread_self(), "velmora-digest");
                // Nothing may leave the thread: without its digest the first
                // array is taken again below.
                try {
                    da = ArrayDigest::of(a);
                } catch (...) {
                    da.reset();
                }
            });
        } catch (const std::system_error&) {
            // No second thread: both are taken here.
        }
    }
    try {
        db = ArrayDigest::of(b);
    } catch (...) {
        if (apart.joinable()) apart.join();
        throw;
    }
    if (apart.joinable()) apart.join();
    if (!da) da = ArrayDigest::of(a);
}

}  // namespace

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
        const auto& vertices = block.vertices() ? block.vertices()->values() : t.points;
        const auto& triangles = block.triangles() ? block.triangles()->values() : t.triangles;
        if (digests_.fits(vertices.size() * sizeof(giPoint3) + triangles.size() * sizeof(giTriangle))) {
            digest(vertices, t.points_digest);
            digest(triangles, t.triangles_digest);
        } else {
            digest_both(vertices, triangles, t.points_digest, t.triangles_digest);
        }
        return;
    }
    if (const giNodeXYZ* v = block.vertices()) t.points = v->values();
    if (const giTriArr* tr = block.triangles()) t.triangles = tr->values();
}

template <class T>
void DumpSink::digest(const std::vector<T>& v, std::optional<ArrayDigest>& out)
{
    if (!digests_.take(v, out)) out = ArrayDigest::of(v);
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
        const auto& points = data.points() ? data.points()->values() : p.points;
        const auto& colours = data.colours() ? data.colours()->values() : p.colours;
        if (digests_.fits(points.size() * sizeof(giPoint3) + colours.size() * sizeof(giColour))) {
            digest(points, p.points_digest);
            digest(colours, p.colours_digest);
        } else {
            digest_both(points, colours, p.points_digest, p.colours_digest);
        }
        return;
    }
    if (const giNodeXYZ* v = data.points()) p.points = v->values();
    if (const annColArr* c = data.colours()) p.colours = c->values();
}
