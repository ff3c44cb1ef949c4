#pragma once
// SceneText: how the text writers of `velmora convert` spell numbers: the
// shortest decimal form that reads back to the same double.
#include <string>

class SceneText {
public:
    static std::string number(double v);
    // A colour component as a fraction of 255, shortest round-trip form.
    static std::string fraction(int byte);
};
