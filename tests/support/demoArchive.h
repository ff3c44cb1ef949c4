#pragma once
// demoArchive: the demo archive that examples/make_demo_archive writes, the
// demo's test checks and the import benchmark reads. One patient seen twice
// (a first fitting and a check-up half a year later); each visit holds a scan
// of the left and of the right foot with the grey picture taken with it, and a
// left and a right insole design over the scan of the same foot.
//
// Every design carries its working grid ("Kerneldata"), the blank's outline
// ("Rohlingsdaten") and the insole outline ("HContour2"), then the height
// sections a lab would use: the first fitting a metatarsal pad with a radial
// profile, a medial arch line, a heel spring band, smoothing and a deduction
// for the cover; the check-up a stock metatarsal pad from a height matrix, a
// point support under the cuboid, a forefoot torsion, a spring profile along
// the foot, a flat toe bed from the foot model, smoothing over the toes and a
// global placement on a minimum thickness. Left designs are the mirror images
// of the right ones.
//
// design_plans() gives what each section does and where, in its design's
// working grid, so that a test can look at the finished insoles there.
#include <string>
#include <vector>

namespace vlm::demo {

enum class side { left, right };

struct point2 {
    double x = 0.0;
    double y = 0.0;
};

// A metatarsal pad ("HPelotte"): an egg-shaped outline round its centre, the
// radial profile from height at the centre to 0 at the outline.
struct profiled_pad {
    point2 centre;
    double height = 0.0;
    double half_width = 0.0;   // across the foot, distal half
    double half_length = 0.0;  // along the foot
    std::vector<double> x, y;  // the outline, closed
    std::vector<double> xb, yb;
};

// A stock pad ("HPelotteS"): a dome of height over a matrix of columns x
// rows cells, turned by angle (radians) and moved onto centre.
struct matrix_pad {
    point2 centre;
    double height = 0.0;
    int columns = 0;
    int rows = 0;
    double cell = 0.0;
    double angle = 0.0;
};

// A line ("HPlinie"): stations along its centre line, at each a cross-section
// from height at the line to 0 at width.
struct line_support {
    std::vector<point2> stations;
    std::vector<double> heights;
    double width = 0.0;
};

// A point support ("HPunkt"): an ellipse of half-axes r1 (turned by alpha)
// and r2 round centre, height at the centre falling to 0 at the ellipse.
struct point_support {
    point2 centre;
    double alpha = 0.0;
    double height = 0.0;
    double r1 = 0.0;
    double r2 = 0.0;
};

// A torsion ("HTorsion") about a lengthwise axis at x = axis_x: on the inner
// side (side 0 left of the axis, 1 right of it) the surface rises across the
// foot along the middle line, from 0 at the axis to value at the insole's
// edge, full above the middle line and fading to the lower line below it.
struct torsion {
    double axis_x = 0.0;
    double middle_y = 0.0;
    double lower_y = 0.0;
    double value = 0.0;
    int side = 0;
};

// A spring band ("HSpreng"): the heel side rises by -z2, the forefoot by the
// fixed half millimetre, linearly across the band between the limits (y1 on
// both edges; y2 at the left and the right edge).
struct spring_band {
    double y1 = 0.0;
    double y2_left = 0.0;
    double y2_right = 0.0;
    double z2 = 0.0;
};

// A spring profile ("HSprenglinie"): at the rows hpos after the insole
// outline's first row the surface rises by about hsel.
struct spring_line {
    std::vector<int> hpos;
    std::vector<double> hsel;
};

// The foot model's toe line ("HFFootMod"): beyond the curve from left through
// the doubled apex inner to right the toe bed is set flat at min_z.
struct toe_line {
    point2 left, inner, right;
    double height = 0.0;
    double min_z = 0.0;
};

// Smoothing ("HGlaett"): the whole insole, or the band from lower_y to the
// grid's end when lower_y is not negative.
struct smoothing {
    int factor = 1;
    double lower_y = -1.0;
};

// One insole design: its side, the foot's frame in the working grid, the
// insole outline and the height sections in file order with their values.
struct design_plan {
    side s = side::right;
    int visit = 0;                  // 0 first fitting, 1 check-up
    std::string finished_model;     // "FINISH_MODEL~n", n counting the archive's models
    double grid_spacing = 0.0;      // of the working grid, both ways
    double centre_x = 0.0;          // the foot's long axis
    double heel_y = 0.0, length = 0.0, width = 0.0;
    std::vector<double> insole_x, insole_y;  // the "HContour2" outline, closed
    std::vector<std::string> sections;       // height sections, in file order

    profiled_pad pad;
    matrix_pad stock_pad;
    line_support arch_line;
    point_support cuboid_support;
    torsion forefoot_torsion;
    spring_band spring;
    spring_line spring_profile;
    toe_line toe_bed;
    smoothing smooth;
    double global_min_z = 0.0;  // "HGloba"
    double deduction = 0.0;     // "HAbzug"

    bool uses(const std::string& section) const;
    // The point along the foot (0 heel, 1 toes) and across it (mm from the
    // long axis, positive towards the outer side) in the working grid.
    point2 at(double along, double across) const;
    // The inner and outer edge of the insole outline on the row through y.
    double inner_edge(double y) const;
    double outer_edge(double y) const;
};

// The archive's four designs in the order of their models: first fitting
// left, right, check-up left, right.
std::vector<design_plan> design_plans();

// Every height section a demo design uses, each in one visit's designs.
const std::vector<std::string>& height_sections();

// Writes the demo archive to path; the sections named in without are left out
// of every design (the rest of the archive is unchanged). False when the file
// cannot be written.
bool write_archive(const std::string& path, const std::vector<std::string>& without = {});

// How much larger than the demo an archive is, for measuring how an import's
// cost grows: visits repeats the first fitting and the check-up in turn (the
// demo has 2); fineness divides the scans' spacing, and the designs' working
// grids with it (the demo has 1; 4 makes 16 times as many grid points).
struct archive_scale {
    int visits = 2;
    int fineness = 1;
};

// The demo archive made larger by scale; the default scale writes the same
// bytes as the demo. False for a scale below the demo's or when the file
// cannot be written.
bool write_archive(const std::string& path, const archive_scale& scale,
                   const std::vector<std::string>& without = {});

}  // namespace vlm::demo
