#include "translate/vmiTriBlock.h"

#include <new>
#include <vector>

#include "archive/vmiObjGrid.h"
#include "grid/vmiBaseGrid.h"
#include "translate/vmiNewTranslator.h"
#include "translate/vmiSetAttributes.h"
#include "translate/vmiTriblockTranslator.h"

namespace {

// The present nodes become the vertices, in node order; index[k] is node k's
// vertex number or -1. The nodes are counted first so that the array is
// sized once. False when storage runs out.
bool add_vertices(vmiBaseGrid& grid, int nx, int ny, std::vector<int>& index, giNodeXYZ& vertices)
{
    int count = 0;
    for (int j = 0; j < ny; j++) {
        for (int i = 0; i < nx; i++) {
            const m03DPoint& p = grid.point(i, j);
            // A missing height is no vertex: the scan import stores one as
            // -1000000000 * dz, the grid an empty node as empty_z, both at or
            // below valid_z.
            index[static_cast<std::size_t>(j) * static_cast<std::size_t>(nx) + static_cast<std::size_t>(i)]
                = p.z() > vmiBaseGrid::valid_z ? count++ : -1;
        }
    }
    if (!vertices.resize(count))
        return false;
    for (int j = 0; j < ny; j++) {
        for (int i = 0; i < nx; i++) {
            const int k = index[static_cast<std::size_t>(j) * static_cast<std::size_t>(nx) + static_cast<std::size_t>(i)];
            if (k >= 0) {
                const m03DPoint& p = grid.point(i, j);
                vertices.set(k, giPoint3(p.x(), p.y(), p.z()));
            }
        }
    }
    return true;
}

// Up to two triangles per cell, nodes a b over c d: (a, b, c) and (b, d, c).
// A cell whose first node is present and whose second is missing is passed
// over at once; both triangles need b, so the rule only spares the tests.
// each(a, b, c) is called for every triangle, in order.
template <class Each>
void each_triangle(const std::vector<int>& index, int nx, int ny, Each each)
{
    for (int j = 0; j + 1 < ny; j++) {
        for (int i = 0; i + 1 < nx; i++) {
            std::size_t row = static_cast<std::size_t>(j) * static_cast<std::size_t>(nx);
            std::size_t next = row + static_cast<std::size_t>(nx);
            int a = index[row + static_cast<std::size_t>(i)];
            int b = index[row + static_cast<std::size_t>(i) + 1];
            int c = index[next + static_cast<std::size_t>(i)];
            int d = index[next + static_cast<std::size_t>(i) + 1];
            if (a >= 0 && b < 0)
                continue;
            if (a >= 0 && b >= 0 && c >= 0)
                each(a, b, c);
            if (b >= 0 && c >= 0 && d >= 0)
                each(b, d, c);
        }
    }
}

// The triangles, counted first so that the array is sized once (a count
// beyond what a feature holds is refused by it). False when storage runs out.
bool add_triangles(const std::vector<int>& index, int nx, int ny, giTriArr& triangles)
{
    long long count = 0;
    each_triangle(index, nx, ny, [&](int, int, int) { count++; });
    if (count > giTriArr::max_count || !triangles.resize(static_cast<int>(count)))
        return false;
    int k = 0;
    each_triangle(index, nx, ny, [&](int a, int b, int c) { triangles.set(k++, giTriangle(a, b, c)); });
    return true;
}

}  // namespace

int vmiTriBlock::convert(giTriBlock& tb) const
{
    if (!record_)
        return 0;
    giNodeXYZ* vertices = tb.features().ensure<giNodeXYZ>();
    giTriArr* triangles = tb.features().ensure<giTriArr>();
    if (!vertices || !triangles)
        return 0;
    vertices->clear();
    triangles->clear();
    vmiBaseGrid* grid = record_->grid();
    if (!grid)
        return 0;
    int nx = grid->x_size();
    int ny = grid->y_size();
    if (!vmiBaseGrid::size_allowed(nx, ny) || nx < 2 || ny < 2)
        return 0;
    std::vector<int> index;
    try {
        index.resize(static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    if (!add_vertices(*grid, nx, ny, index, *vertices) || !add_triangles(index, nx, ny, *triangles)) {
        vertices->clear();
        triangles->clear();
        return 0;
    }
    return vertices->size() >= 3 && triangles->size() >= 1 ? 1 : 0;
}

void vmiTriBlock::set_attributes(qorabsAttributeSet& set) const
{
    vmi_set_attributes(set, TRIANGLEBLOCK, record_, true);
}

qorabsTranslatorcoPrf vmiTriBlock::make_translator(const qorabsContext& context) const
{
    return vmi_new_translator<vmiTriblockTranslator>(context, *this);
}
