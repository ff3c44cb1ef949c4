#pragma once
// SceneText: how the text writers of `velmora convert` spell numbers: the
// shortest decimal form that reads back to the same value. Geometry is
// written as float32, what every mesh reader keeps, so a coordinate reads
// back bit for bit and takes no more digits than its float needs.
#include <string>

class SceneText {
public:
    static std::string number(double v);
    static std::string number(float v);
    // A colour component as a fraction of 255, a float32 in its shortest
    // round-trip form.
    static std::string fraction(int byte);
};
