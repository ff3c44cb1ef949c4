#include "translate/vmiTriBlock.h"

#include <memory>
#include <new>

#include "archive/vmiObjGrid.h"
#include "grid/vmiBaseGrid.h"
#include "translate/vmiNewTranslator.h"
#include "translate/vmiSetAttributes.h"
#include "translate/vmiTriblockTranslator.h"

namespace {

// Up to two triangles per cell, nodes a b over c d: (a, b, c) and (b, d, c).
// A cell whose first node is present and whose second is missing is passed
// over at once; both triangles need b, so the rule only spares the tests.
// each(a, b, c) is called for every triangle of the cells between rows j and
// j + 1 (of vertex numbers row and next), in order.
template <class Each>
void row_triangles(const int* row, const int* next, int nx, Each each)
{
    for (int i = 0; i + 1 < nx; i++) {
        const int a = row[i];
        const int b = row[i + 1];
        const int c = next[i];
        const int d = next[i + 1];
        if (a >= 0 && b < 0)
            continue;
        if (a >= 0 && b >= 0 && c >= 0)
            each(a, b, c);
        if (b >= 0 && c >= 0 && d >= 0)
            each(b, d, c);
    }
}

// The grid's present nodes as the vertices (row by row) and the triangles
// of its cells (row by row), counted in one pass so that both arrays are
// sized once, then written in a second. index holds nx * ny entries. False
// when storage runs out or there are more triangles than a feature holds.
bool fill(vmiBaseGrid& grid, int nx, int ny, int* index, giNodeXYZ& vertices, giTriArr& triangles)
{
    int count = 0;
    long long cells = 0;
    for (int j = 0; j < ny; j++) {
        int* row = index + static_cast<std::size_t>(j) * static_cast<std::size_t>(nx);
        for (int i = 0; i < nx; i++) {
            // A missing height is no vertex: the scan import stores one as
            // -1000000000 * dz, the grid an empty node as empty_z, both at or
            // below valid_z.
            row[i] = grid.point(i, j).z() > vmiBaseGrid::valid_z ? count++ : -1;
        }
        if (j > 0)
            row_triangles(row - nx, row, nx, [&](int, int, int) { cells++; });
    }
    if (cells > giTriArr::max_count || !vertices.resize(count) || !triangles.resize(static_cast<int>(cells)))
        return false;
    int t = 0;
    for (int j = 0; j < ny; j++) {
        const int* row = index + static_cast<std::size_t>(j) * static_cast<std::size_t>(nx);
        for (int i = 0; i < nx; i++) {
            if (row[i] >= 0) {
                const m03DPoint& p = grid.point(i, j);
                vertices.set(row[i], giPoint3(p.x(), p.y(), p.z()));
            }
        }
        if (j > 0)
            row_triangles(row - nx, row, nx, [&](int a, int b, int c) { triangles.set(t++, giTriangle(a, b, c)); });
    }
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
    // Every entry is written before it is read: the numbers need no clearing.
    std::unique_ptr<int[]> index(new (std::nothrow) int[static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny)]);
    if (!index)
        return 0;
    if (!fill(*grid, nx, ny, index.get(), *vertices, *triangles)) {
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
