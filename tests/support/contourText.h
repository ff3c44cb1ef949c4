#pragma once
// contourText: writes contour data texts (orthotic models, "0001" files) for
// fixtures: the header line, sections opened and closed by their instruction
// numbers, key lines with texts, integers, numbers and comma-separated arrays,
// and raw lines for malformed cases. The text goes into an archive as a data
// entry's content (vlm::chunk_chain) like any other record.
#include <string>
#include <vector>

namespace vlm {

// A number as the contour reader reads it back: always with a point (a value
// without one loses its sign), fixed notation (no exponent), shortest digits.
std::string contour_number(double v);

class contour_text {
public:
    // The first line is a free header; contour files start with "0001".
    explicit contour_text(const std::string& header = "0001");

    // "0" + number + " " + text: an instruction line. Every instruction line
    // has the one space after its number, closing lines included.
    contour_text& instruction(int number, const std::string& text = "");
    // Key lines (instruction 101): "key=" directly followed by the value.
    contour_text& key(const std::string& key, const std::string& text);
    contour_text& key(const std::string& key, const char* text);
    contour_text& key(const std::string& key, int value);
    contour_text& key(const std::string& key, double value);
    contour_text& array(const std::string& key, const std::vector<double>& values,
                        const std::string& separator = ",");
    contour_text& int_array(const std::string& key, const std::vector<int>& values);
    // Any line as given (without its line end).
    contour_text& raw(const std::string& line);

    // Sections by name: open ("0200 Rohlingsdaten", "0300 HContour2",
    // "0500 3DBrandsohle", "0700 Kerneldata") and close ("0299 ", "0399 ",
    // "0799 ").
    contour_text& open_blank() { return instruction(200, "Rohlingsdaten"); }
    contour_text& close_blank() { return instruction(299); }
    contour_text& open_height(const std::string& name) { return instruction(300, name); }
    contour_text& close_height() { return instruction(399); }
    contour_text& open_kernel() { return instruction(700, "Kerneldata"); }
    contour_text& close_kernel() { return instruction(799); }
    contour_text& end() { return instruction(999); }

    // Whole sections with the keys in the order the document tests them.
    contour_text& kerneldata(int xnum, int ynum, double xres, double yres, double randx,
                             double randy);
    // The blank: lower outline (x, y) and, when x_up is not empty, the upper
    // one (x_up, y_up, z_up, z_up may be empty), count = x.size() (or
    // x_up.size() without a lower outline).
    contour_text& rohlingsdaten(const std::string& name, const std::vector<double>& x,
                                const std::vector<double>& y, const std::vector<double>& x_up,
                                const std::vector<double>& y_up, const std::vector<double>& z_up,
                                double height1, double height2);
    // The insole outline (x2, y2) with flag2; no first curve.
    contour_text& hcontour2(const std::string& name, const std::vector<double>& x2,
                            const std::vector<double>& y2, int flag2 = 1);

    // The lines joined, each ended by "\n" (or "\r\n"); without the final
    // line end when final_line_feed is false.
    std::string text(bool crlf = false, bool final_line_feed = true) const;

private:
    std::vector<std::string> lines_;
};

// A foot-shaped closed outline of n points (the last equal to the first):
// heel, narrow arch on the inner side, wide forefoot, toes; length along y
// and width along x, its lower left corner at (x0, y0).
void foot_outline(int n, double x0, double y0, double width, double length, std::vector<double>& x,
                  std::vector<double>& y);

// The small design the suites import: a 60 x 110 working grid at 1 mm, the
// blank's foot outline (40 x 90 mm from (10, 10)) and, when finished, the
// insole outline 2 mm inside it. The text alone: the caller wraps it in an
// entry (as a chunk chain, or raw).
std::string small_design(bool finished = true);

// A closed rectangle outline from (x0, y0) to (x1, y1), a point every 2 units
// along its sides (the last equal to the first), so that a spline through it
// keeps close to the sides and rounds the corners within about a unit.
void rectangle_outline(double x0, double y0, double x1, double y1, std::vector<double>& x,
                       std::vector<double>& y);

}  // namespace vlm
