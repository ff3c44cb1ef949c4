#include "cli/writers/SceneCollector.h"

#include <cmath>
#include <utility>

#include "host/qorabsColour.h"
#include "host/qorabsLayer.h"
#include "host/qorabsName.h"

namespace {

ScenePoint point_of(const giPoint3& p)
{
    return {p.x(), p.y(), p.z()};
}

bool finite(const giPoint3& p)
{
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

} // namespace

SceneCollector::SceneCollector(std::string name)
{
    scene_.top.name = name;
    scene_.top.mangled = std::move(name);
    open_.push_back(&scene_.top);
}

SceneItemInfo SceneCollector::info_of(const qorabsAttributeSet& attrs, const utString& mangled)
{
    SceneItemInfo info;
    if (const qorabsName* n = attrs.name()) info.name = n->name().str();
    info.mangled = mangled.str();
    if (const qorabsLayer* l = attrs.layer()) {
        info.layer = l->name().str();
        info.level = l->level();
    }
    if (const qorabsColour* c = attrs.colour(); c && c->is_valid()) info.colour = c->index();
    return info;
}

void SceneCollector::begin_group(const qorabsAttributeSet& attrs, const utString& mangled,
                                 const giXform3& xform)
{
    SceneGroup g;
    const SceneItemInfo info = info_of(attrs, mangled);
    g.name = info.name;
    g.mangled = info.mangled;
    for (int i = 0; i < giXform3::size; ++i) g.placement[static_cast<std::size_t>(i)] = xform.data()[i];
    open_.push_back(&current().add(std::move(g)));
}

void SceneCollector::end_group()
{
    // The top is never closed: an unmatched end_group is ignored.
    if (open_.size() > 1) open_.pop_back();
}

void SceneCollector::triblock(const qorabsAttributeSet& attrs, const utString& mangled,
                              const qorabsTranslationStatus& status, const giTriBlock& block)
{
    if (!status.ok() || block.num_vertices() == 0 || block.num_triangles() == 0) {
        ++skipped_items_;
        return;
    }
    SceneMesh m;
    m.info = info_of(attrs, mangled);
    // A vertex without a finite position stands at the origin, and every
    // triangle that uses it is dropped: no file may carry an infinity.
    // Sized once: a block's arrays are large, and growing them copies.
    std::vector<bool> usable;
    usable.reserve(block.vertices()->values().size());
    m.vertices.reserve(block.vertices()->values().size());
    m.triangles.reserve(block.triangles()->values().size());
    for (const giPoint3& p : block.vertices()->values()) {
        usable.push_back(finite(p));
        m.vertices.push_back(usable.back() ? point_of(p) : ScenePoint{0.0, 0.0, 0.0});
    }
    const long long n = static_cast<long long>(m.vertices.size());
    const auto ok = [&](int i) { return i >= 0 && i < n && usable[static_cast<std::size_t>(i)]; };
    for (const giTriangle& t : block.triangles()->values()) {
        if (!ok(t.a()) || !ok(t.b()) || !ok(t.c())) {
            ++dropped_triangles_;
            continue;
        }
        m.triangles.push_back({static_cast<std::uint32_t>(t.a()), static_cast<std::uint32_t>(t.b()),
                               static_cast<std::uint32_t>(t.c())});
    }
    if (m.triangles.empty()) {
        ++skipped_items_;
        return;
    }
    current().add(std::move(m));
}

void SceneCollector::curve(const qorabsAttributeSet& attrs, const utString& mangled,
                           const qorabsTranslationStatus& status, const rnxCurvePtr3& curve)
{
    if (!status.ok() || !curve) {
        ++skipped_items_;
        return;
    }
    SceneCurve c;
    c.info = info_of(attrs, mangled);
    c.order = curve->order();
    c.points.reserve(curve->points().size());
    for (const giPoint3& p : curve->points()) c.points.push_back(point_of(p));
    c.weights = curve->weights();
    c.knots = curve->knots();
    current().add(std::move(c));
}

void SceneCollector::pointcloud(const qorabsAttributeSet& attrs, const utString& mangled,
                                const annPointCloudData& data)
{
    if (data.num_points() == 0) {
        ++skipped_items_;
        return;
    }
    ScenePointCloud c;
    c.info = info_of(attrs, mangled);
    const annColArr* colours = data.colours();
    const int n = data.num_points();
    c.points.reserve(static_cast<std::size_t>(n));
    c.colours.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        const giPoint3 p = data.points()->get(i);
        if (!finite(p)) {
            ++dropped_points_;
            continue;
        }
        c.points.push_back(point_of(p));
        // A point the colour feature does not reach is white.
        const giColour k = colours && i < colours->size() ? colours->get(i) : giColour(255, 255, 255, 0);
        c.colours.push_back({static_cast<std::uint8_t>(k.r()), static_cast<std::uint8_t>(k.g()),
                             static_cast<std::uint8_t>(k.b())});
    }
    if (c.points.empty()) {
        ++skipped_items_;
        return;
    }
    current().add(std::move(c));
}
