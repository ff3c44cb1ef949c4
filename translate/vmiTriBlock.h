#pragma once
// vmiTriBlock: hands a height-grid record to the host as a triangle block.
// It only points to the record (which belongs to the node tree); it is a
// small value, and the translator made from it keeps its own copy, so
// nothing the node translation makes is left to be freed by hand.
#include "host/giTriBlock.h"
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslator.h"

class qorabsContext;
class vmiObjGrid;

class vmiTriBlock {
public:
    explicit vmiTriBlock(vmiObjGrid* record) : record_(record) {}
    vmiObjGrid* record() const { return record_; }

    // Fills tb with the grid's present nodes (those above vmiBaseGrid::valid_z)
    // as vertices (row by row) and two triangles per cell where the nodes
    // allow; 1 when it made at least 3 vertices and 1 triangle, else 0 (0 at
    // once without a record).
    int convert(giTriBlock& tb) const;
    // TRIANGLEBLOCK, NAME, LAYER, and COLOUR when the record's colour is non-zero.
    void set_attributes(qorabsAttributeSet& set) const;
    // A new vmiTriblockTranslator over a copy of this wrapper; empty if it
    // cannot be allocated.
    qorabsTranslatorcoPrf make_translator(const qorabsContext& context) const;

private:
    vmiObjGrid* record_;
};
