#include "tests/support/contourText.h"

#include <charconv>
#include <cmath>

namespace vlm {

std::string contour_number(double v)
{
    char buf[512];
    auto res = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed);
    std::string s(buf, res.ec == std::errc() ? res.ptr : buf);
    if (s.find('.') == std::string::npos)
        s += ".0";
    return s;
}

contour_text::contour_text(const std::string& header)
{
    lines_.push_back(header);
}

contour_text& contour_text::instruction(int number, const std::string& text)
{
    // Built by appending: GCC 12 warns falsely about a chain of operator+.
    std::string line = "0";
    line.append(std::to_string(number)).append(" ").append(text);
    lines_.push_back(line);
    return *this;
}

contour_text& contour_text::key(const std::string& key, const std::string& text)
{
    return instruction(101, key + "=" + text);
}

contour_text& contour_text::key(const std::string& key, const char* text)
{
    return this->key(key, std::string(text));
}

contour_text& contour_text::key(const std::string& key, int value)
{
    return this->key(key, std::to_string(value));
}

contour_text& contour_text::key(const std::string& key, double value)
{
    return this->key(key, contour_number(value));
}

contour_text& contour_text::array(const std::string& key, const std::vector<double>& values,
                                  const std::string& separator)
{
    std::string s;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i)
            s += separator;
        s += contour_number(values[i]);
    }
    return this->key(key, s);
}

contour_text& contour_text::int_array(const std::string& key, const std::vector<int>& values)
{
    std::string s;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i)
            s += ",";
        s += std::to_string(values[i]);
    }
    return this->key(key, s);
}

contour_text& contour_text::raw(const std::string& line)
{
    lines_.push_back(line);
    return *this;
}

contour_text& contour_text::kerneldata(int xnum, int ynum, double xres, double yres, double randx,
                                       double randy)
{
    return open_kernel()
        .key("xnum", xnum)
        .key("ynum", ynum)
        .key("xres", xres)
        .key("yres", yres)
        .key("randx", randx)
        .key("randy", randy)
        .close_kernel();
}

contour_text& contour_text::rohlingsdaten(const std::string& name, const std::vector<double>& x,
                                          const std::vector<double>& y,
                                          const std::vector<double>& x_up,
                                          const std::vector<double>& y_up,
                                          const std::vector<double>& z_up, double height1,
                                          double height2)
{
    open_blank().key("name", name);
    key("count", static_cast<int>(x.empty() ? x_up.size() : x.size()));
    if (!x.empty())
        array("xSpl", x).array("ySpl", y);
    if (!x_up.empty()) {
        array("xSplUp", x_up).array("ySplUp", y_up);
        if (!z_up.empty())
            array("zSplUp", z_up);
    }
    return key("height1", height1).key("height2", height2).close_blank();
}

contour_text& contour_text::hcontour2(const std::string& name, const std::vector<double>& x2,
                                      const std::vector<double>& y2, int flag2)
{
    return open_height("HContour2")
        .key("name", name)
        .key("nanz1", 0)
        .key("nanz2", static_cast<int>(x2.size()))
        .array("x2", x2)
        .array("y2", y2)
        .key("flag1", 0)
        .key("flag2", flag2)
        .close_height();
}

std::string contour_text::text(bool crlf, bool final_line_feed) const
{
    const std::string eol = crlf ? "\r\n" : "\n";
    std::string s;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        s += lines_[i];
        if (i + 1 < lines_.size() || final_line_feed)
            s += eol;
    }
    return s;
}

void foot_outline(int n, double x0, double y0, double width, double length, std::vector<double>& x,
                  std::vector<double>& y)
{
    x.clear();
    y.clear();
    if (n < 4)
        return;
    const double pi = std::acos(-1.0);
    const int m = n - 1;
    for (int k = 0; k < m; ++k) {
        // Round the outline from the heel's middle, up the outer side, over the
        // toes and down the inner side.
        double a = 2.0 * pi * k / m;
        double v = 0.5 - 0.5 * std::cos(a);  // 0 at the heel, 1 at the toes
        double side = std::sin(a) >= 0.0 ? 1.0 : -1.0;  // outer (+) or inner (-)
        // Half width along the foot: heel, waist (the arch pulls the inner
        // side in) and ball, rounded off at the toes.
        double half = 0.30 + 0.20 * v + 0.05 * std::sin(pi * v);
        if (side < 0.0)
            half -= 0.12 * std::exp(-std::pow((v - 0.45) / 0.15, 2.0));
        half *= std::sqrt(std::fabs(std::sin(a)));
        x.push_back(x0 + width * (0.5 + side * half));
        y.push_back(y0 + length * v);
    }
    x.push_back(x.front());
    y.push_back(y.front());
}

std::string small_design(bool finished)
{
    std::vector<double> x, y, xi, yi;
    foot_outline(31, 10, 10, 40, 90, x, y);
    foot_outline(31, 12, 12, 36, 86, xi, yi);
    contour_text t("0001 design");
    t.kerneldata(60, 110, 1.0, 1.0, 10.0, 10.0);
    t.rohlingsdaten("sole", x, y, {}, {}, {}, 3.0, 8.0);
    if (finished)
        t.hcontour2("insole", xi, yi);
    return t.end().text();
}

void rectangle_outline(double x0, double y0, double x1, double y1, std::vector<double>& x,
                       std::vector<double>& y)
{
    x.clear();
    y.clear();
    auto side = [&](double ax, double ay, double bx, double by) {
        int n = static_cast<int>((std::fabs(bx - ax) + std::fabs(by - ay)) / 2.0);
        for (int i = 0; i < n; ++i) {
            x.push_back(ax + (bx - ax) * i / n);
            y.push_back(ay + (by - ay) * i / n);
        }
    };
    side(x0, y0, x1, y0);
    side(x1, y0, x1, y1);
    side(x1, y1, x0, y1);
    side(x0, y1, x0, y0);
    x.push_back(x0);
    y.push_back(y0);
}

}  // namespace vlm
