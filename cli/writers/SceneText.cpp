#include "cli/writers/SceneText.h"

#include <charconv>

std::string SceneText::number(double v)
{
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string SceneText::number(float v)
{
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string SceneText::fraction(int byte)
{
    return number(static_cast<float>(static_cast<double>(byte) / 255.0));
}
