#pragma once
// PreviewPictures: pictures of what an import handed the host, made from a
// Scene alone.
//
// - Every triangle mesh (a scan's height grid, a finished insole) becomes a
//   height map seen from above: each pixel takes the colour (HeightColours)
//   of the highest surface over its centre, between the lowest and the
//   highest height of the mesh's vertices, with a legend in millimetres
//   beside it. The curves of the mesh's own group (the insole's outlines)
//   are drawn over it in their colours.
// - Every point cloud (a scan's plantar image) becomes the picture it was
//   taken as: its points run row by row, each row as long as the run of
//   points at the first point's y, and each point is one pixel of its own
//   colour. A cloud whose points do not run so is drawn point by point at
//   its positions instead.
// - overview() puts every picture of an archive on one sheet as a thumbnail
//   labelled with its path.
//
// Maps and pictures are seen from above: x runs to the right, y upwards. Each
// shows its item in the item's own coordinates: the groups' placements only
// lay the scans and models side by side for a host's view, and left out they
// keep a grid's nodes where the archive put them.
// A map pixel's centre lies at a whole multiple of its size from the origin,
// so a height grid's node falls on a pixel centre and its pixel shows the
// node's own height.
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/preview/Canvas.h"
#include "cli/preview/PngFile.h"
#include "cli/writers/Scene.h"

struct PreviewPicture {
    enum Kind { scan, insole, image };

    Kind kind = scan;
    // The item's position among Scene::placed_items().
    std::size_t item = 0;
    // The names of the groups around the item, outermost first, then its own.
    std::vector<std::string> path;
    Canvas canvas;
    // What the picture shows, for the PNG file's text chunks: "Title",
    // "Kind", and for a height map "Heights", "Raster" and "Legend" (see
    // PreviewPictures::help()).
    PngFile::Texts texts;
    // A height map's range in millimetres; both 0 for an image.
    double lowest = 0.0;
    double highest = 0.0;

    // The path as one line, the names joined by '/'.
    std::string label() const;
    // "scan", "insole" or "image".
    const char* kind_name() const;
};

class PreviewPictures {
public:
    // Map pixels a millimetre: a quarter millimetre shows a height grid's
    // nodes one by one. A power of two, so that a pixel centre's position is
    // exact.
    static constexpr double pixels_per_mm = 4.0;
    // A map's longest side in pixels: a larger part is shown at half the
    // scale, as often as needed, so a hostile extent never makes an
    // unbounded picture.
    static constexpr int max_map_side = 2048;
    // Pixel centres one map may test against triangles (about 0.2 s): a mesh
    // of many large overlapping triangles stops drawing there instead of
    // taking hours.
    static constexpr long long max_raster_tests = 1LL << 26;
    // Line steps one map may spend on outlines: at most the map's width plus
    // height a segment, and a curve has up to SceneCurve::max_samples.
    static constexpr long long max_line_steps = 1LL << 24;
    // An image's longest side: a cloud that would run longer rows or more
    // rows is drawn at its positions, within max_map_side.
    static constexpr int max_image_side = 16384;
    // The box a thumbnail of the overview fits in.
    static constexpr int thumbnail_size = 200;
    // Pictures the overview shows; the sheet says how many more there are.
    static constexpr std::size_t max_overview_items = 256;
    // The longest file name stem, well within any file system's 255 bytes.
    static constexpr std::size_t max_file_stem = 120;

    // Space around and between the parts of a picture.
    static constexpr int margin = 8;
    // The legend's colour bar: one pixel row per level of HeightColours.
    static constexpr int bar_width = 16;

    // Calls each(picture) for every mesh and point cloud of scene, in the
    // order of the walk (Scene::placed_items(1.0)).
    static void make(const Scene& scene, const std::function<void(PreviewPicture&)>& each);

    // The sheet of thumbnails: title on top, then each picture shrunk into
    // thumbnail_size with its label under it, in rows of up to four.
    struct Thumbnail {
        Canvas picture;
        std::string label;
    };
    static Canvas overview(const std::string& title, const std::vector<Thumbnail>& thumbnails, std::size_t left_out);

    // The paths of the pictures make() would make, in the same order, without
    // drawing them.
    static std::vector<std::vector<std::string>> paths(const Scene& scene);
    // A file name stem for a picture at path: the names after the first
    // `shared` (the groups every picture of an archive lies in say nothing
    // of one), without a repeat of the one before, each cut to letters,
    // digits, '.' and '-' (any run of other bytes and '_' becomes one '_'),
    // joined by "--", at most max_file_stem bytes; "item" when nothing is
    // left.
    static std::string file_stem(const std::vector<std::string>& path, std::size_t shared = 0);
    // How many leading names all paths share, leaving each at least its last.
    static std::size_t shared_names(const std::vector<std::vector<std::string>>& paths);

    // What the pictures and their text chunks hold, for the commands' help.
    static std::string help();
};

// Writes the pictures of a scene as PNG files into a folder, each file named
// after its path (made unique by "-2", "-3" ... where two paths give the same
// name), and the overview as overview.png.
class PreviewFolder {
public:
    struct Written {
        PreviewPicture::Kind kind;
        std::size_t item;
        std::string label;
        std::string file;  // the file's name inside the folder
        int width = 0;
        int height = 0;
        double lowest = 0.0, highest = 0.0;
    };
    static constexpr const char* overview_file = "overview.png";

    // Empty on success, else why the first file that could not be written
    // (its path in failed) was not (the folder must exist).
    static std::string write(const Scene& scene, const std::string& folder, const std::string& title,
                             std::vector<Written>& written, std::string& failed);
};
