// libFuzzer target: contour text (an orthotic model's "0001" entry) parsed
// by vmiVelmcontur over a base grid, so that every section and height
// modifier runs, then every object it made handed to the host through its
// translator (the finished grid becomes a triangle block, the outlines
// curves). The first byte chooses the base grid: none, a flat one, or a
// sloped one with a hole of empty nodes; the rest is the text.
#include <cstdint>
#include <cstring>
#include <memory>

#include "WalkSink.h"
#include "archive/vmiObject.h"
#include "FuzzLimits.h"
#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"
#include "host/qorabsContext.h"
#include "host/qorabsTranslator.h"
#include "translate/vmiObjectTranslator.h"

namespace {

// The base grids of the seeds' designs: 41 x 41 nodes at 1 mm, held by a
// 100 x 100 working grid with a 30 mm margin.
constexpr int base_nodes = 41;
constexpr double base_z = 5.0;

vmiBaseGrid* base_grid(unsigned choice)
{
    switch (choice % 3u) {
    case 0:
        return nullptr;
    case 1: {
        auto* g = new vmiBaseGrid(base_nodes, base_nodes, 1.0, 1.0);
        for (int j = 0; j < base_nodes; ++j)
            for (int i = 0; i < base_nodes; ++i)
                g->set_z(i, j, base_z);
        return g;
    }
    default: {
        auto* g = new vmiBaseGrid(base_nodes, base_nodes, 1.0, 1.0);
        for (int j = 0; j < base_nodes; ++j)
            for (int i = 0; i < base_nodes; ++i) {
                const bool hole = i > 15 && i < 20 && j > 15 && j < 20;
                g->set_z(i, j, hole ? vmiBaseGrid::empty_z : base_z + 0.1 * i + 0.05 * j);
            }
        return g;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1 || size - 1 > static_cast<std::size_t>(INT32_MAX))
        return 0;
    const int len = static_cast<int>(size - 1);
    // Exactly len bytes, so that a read past the text's end shows.
    std::unique_ptr<char[]> text(new char[static_cast<std::size_t>(len) + (len == 0)]);
    std::memcpy(text.get(), data + 1, static_cast<std::size_t>(len));
    vmiVelmcontur doc(text.get(), len, 4, base_grid(data[0]), fuzz_design_work);
    const qorabsContext context;
    WalkSink sink;
    for (int i = 0; i < doc.no_of_objects(); ++i) {
        qorabsTranslatorcoPrf t = vmi_object_translator(doc.object(i), context);
        if (t)
            t->process(sink, nullptr);
    }
    sink.finish();
    return 0;
}
