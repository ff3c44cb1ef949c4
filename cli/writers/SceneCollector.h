#pragma once
// SceneCollector: a host's output sink that builds a Scene from the walk of an
// import's translators, exactly as any host receives them (begin_group /
// end_group, triangle blocks, curves, point clouds with their attributes). It
// reads nothing but what the walk hands it.
//
// An item whose conversion failed (status 1) carries no geometry and is left
// out, as is a point cloud without points; a triangle naming a vertex the
// block does not have, or one without a finite position, is dropped, and so is
// a cloud's point without one. Each is counted, so that the command can say
// what it did not write.
#include <cstddef>
#include <vector>

#include "cli/writers/Scene.h"
#include "host/qorabsOutputSink.h"

class SceneCollector : public qorabsOutputSink {
public:
    // The scene's top carries name (the writers name the file's root after it).
    explicit SceneCollector(std::string name);

    void begin_group(const qorabsAttributeSet& attrs, const utString& mangled,
                     const giXform3& xform) override;
    void end_group() override;
    void triblock(const qorabsAttributeSet& attrs, const utString& mangled,
                  const qorabsTranslationStatus& status, const giTriBlock& block) override;
    void curve(const qorabsAttributeSet& attrs, const utString& mangled,
               const qorabsTranslationStatus& status, const rnxCurvePtr3& curve) override;
    void pointcloud(const qorabsAttributeSet& attrs, const utString& mangled,
                    const annPointCloudData& data) override;

    const Scene& scene() const { return scene_; }
    Scene take_scene() { return std::move(scene_); }
    // Items left out: failed conversions and empty point clouds.
    std::size_t skipped_items() const { return skipped_items_; }
    // Triangles dropped for a vertex index outside their block or a vertex
    // without a finite position.
    std::size_t dropped_triangles() const { return dropped_triangles_; }
    // Cloud points dropped for a position that is not finite.
    std::size_t dropped_points() const { return dropped_points_; }

private:
    static SceneItemInfo info_of(const qorabsAttributeSet& attrs, const utString& mangled);
    SceneGroup& current() { return *open_.back(); }

    Scene scene_;
    // The open groups, outermost first: the scene's top, then each group begun
    // and not yet ended. Only the innermost changes while it is open, so the
    // pointers to its ancestors stay valid.
    std::vector<SceneGroup*> open_;
    std::size_t skipped_items_ = 0;
    std::size_t dropped_triangles_ = 0;
    std::size_t dropped_points_ = 0;
};
