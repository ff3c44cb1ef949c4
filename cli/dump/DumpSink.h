#pragma once
// DumpSink: a host's output sink that keeps what the walk delivered as a tree
// of items, each with its attributes as the translator set them and a copy of
// its geometry, for `velmora dump` to write once the walk is over (the
// references the walk passes are valid during the call only).
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/dump/ArrayDigest.h"
#include "cli/dump/DigestQueue.h"
#include "host/giColour.h"
#include "host/giPoint3.h"
#include "host/giTriangle.h"
#include "host/giXform3.h"
#include "host/qorabsOutputSink.h"
#include "host/rnxNurbCurve3.h"

struct DumpItem {
    enum Kind { group, triblock, curve, pointcloud };

    Kind kind = group;
    // NAME as set (empty when none) and the name the walk mangled from it.
    std::string name;
    std::string mangled;
    bool has_layer = false;
    int level = 0;
    std::string layer_name;
    // COLOUR: only when the translator checked it out.
    bool has_colour = false;
    int colour = 0;
    // create_triblock / create_curve: 0 success, 1 failure.
    int status = 0;
    giXform3 xform;
    // A triangle block's vertices or a point cloud's points.
    std::vector<giPoint3> points;
    std::vector<giTriangle> triangles;
    std::vector<giColour> colours;
    // A summary sink's digests of those arrays, which it keeps instead.
    std::optional<ArrayDigest> points_digest, triangles_digest, colours_digest;
    // The curve as handed over; null on failure.
    rnxCurvePtr3 nurb;
    std::vector<std::unique_ptr<DumpItem>> children;
};

class DumpSink : public qorabsOutputSink {
public:
    // summary: keep each array's digest, taken during the walk, instead of a
    // copy of it; an import's geometry then lives only in the plug-in. The
    // digests are taken on a second thread: finish() before reading them.
    explicit DumpSink(bool summary = false) : summary_(summary) {}

    // Waits for the digests still being taken (summary only); rethrows what
    // taking them met (storage running out).
    void finish() { digests_.finish(); }

    // The items the walk delivered outside any group: one per translator the
    // host walked.
    const std::vector<std::unique_ptr<DumpItem>>& top() const { return top_; }
    // The same, to prune once the walk is over (see Selection::apply).
    std::vector<std::unique_ptr<DumpItem>>& top() { return top_; }

    void begin_group(const qorabsAttributeSet& attrs, const utString& mangled, const giXform3& xform) override;
    void end_group() override;
    void triblock(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
                  const giTriBlock& block) override;
    void curve(const qorabsAttributeSet& attrs, const utString& mangled, const qorabsTranslationStatus& status,
               const rnxCurvePtr3& curve) override;
    void pointcloud(const qorabsAttributeSet& attrs, const utString& mangled, const annPointCloudData& data) override;

private:
    // A new item with attrs and mangled, placed in the open group (or at the top).
    DumpItem& add(DumpItem::Kind kind, const qorabsAttributeSet& attrs, const utString& mangled);

    // Each array's digest into out: queued, or taken at once when it is
    // too large to copy.
    template <class T>
    void digest(const std::vector<T>& v, std::optional<ArrayDigest>& out);

    bool summary_;
    std::vector<std::unique_ptr<DumpItem>> top_;
    std::vector<DumpItem*> open_;
    // Declared after the items it writes to, so that it stops before they go.
    DigestQueue digests_;
};
