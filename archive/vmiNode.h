#pragma once
// vmiNode: one group of the tree the catalogue is turned into. The root
// "Data Base" holds the level-1 groups, they the level-2 groups, and each
// level-2 group a scan group ("VelmScan(...)") and a model group ("PCS
// models(...)"), whose members hold the geometry: a scan node its objects, a
// model node its contour record with the objects that record produced.
//
// A node owns its children (a list: first, last, next sibling), its objects
// and its contour record. The tree is a few levels deep, but a sibling list
// may be as long as the catalogues are: every walk along the siblings is a
// loop, never a recursion through the chain, and only descending into the
// children recurses.
#include "host/coPageArr.h"
#include "host/giXform3.h"
#include "host/qorabsTranslatorcoPrf.h"
#include "host/utString.h"

class qorabsContext;
class vmiObject;
class vmiVelmcontur;

class vmiNode {
public:
    // Node kinds.
    enum Type {
        group_type = 0,        // the root and the level-1 groups
        level2_type = 1,       // a level-2 group
        scan_group_type = 2,   // "VelmScan(...)"
        model_group_type = 3,  // "PCS models(...)"
        scan_type = 4,         // one scan or image object
        model_type = 5,        // one orthotic model with its contour record
    };

    vmiNode();
    explicit vmiNode(utString name);
    vmiNode(utString name, int type);
    // Deletes the children with their subtrees, the contour record and the
    // objects. The siblings belong to the parent and are left alone.
    ~vmiNode();
    vmiNode(const vmiNode&) = delete;
    vmiNode& operator=(const vmiNode&) = delete;

    // Appends a child (taking it) at the end of the children.
    void add(vmiNode* child);
    // Appends an object (taking it); one that cannot be kept is deleted.
    void add(vmiObject* object);
    vmiNode* next() const { return next_; }
    void next(vmiNode* n) { next_ = n; }
    vmiNode* first_child() const { return first_child_; }
    vmiNode* last_child() const { return last_child_; }
    // Attaches the contour record, taking it (a record attached before is deleted).
    void velmcontur(vmiVelmcontur* record);
    vmiVelmcontur* velmcontur() const { return velmcontur_; }

    int type() const { return type_; }
    const utString& name() const { return name_; }
    giXform3& xform() { return xform_; }
    const giXform3& xform() const { return xform_; }
    coPageArr<vmiObject*>& objects() { return objects_; }
    int no_of_objects() const { return objects_.size(); }

    // Depth first: this node's name, then the following siblings' searches,
    // then the children's; the first match wins; null when none.
    vmiNode* find_node(const utString& name);
    // This node's objects when it has any (the first of that name, or null,
    // looking no further), else its contour record's, else the following
    // siblings' searches, then the children's.
    vmiObject* find_obj(const utString& name);
    // This node's object count when it has objects, else its contour
    // record's, else the sum of the next sibling's count and of every
    // child's. A child's count takes in its following siblings as well, so
    // siblings are counted more than once: that is the defined result.
    int common_no_of_obj();
    // The same walk, counting only objects of the given level.
    int common_no_of_obj(const int& level);

    // The x and y extent of the node's objects (or its contour record's):
    // 0 and 0 when there are none; an extent the merged box cannot give (the
    // box stays invalid) is the largest double.
    void size(double& xlength, double& ylength);
    // Lays the tree out: the members of a scan or model group side by side in
    // x without gaps, each group in its own band in y from offset on.
    void check_shear(double& offset);
    // The group translator of this node with its children's translators, or
    // else its objects' (or its contour record's objects'); empty when it
    // cannot be allocated.
    qorabsTranslatorcoPrf make_translator(const qorabsContext& context);

private:
    // A node that answers for itself: it holds objects or a contour record.
    bool holds_objects() const;

    [[maybe_unused]] int unused_ = 0;
    int type_ = group_type;
    vmiNode* first_child_ = nullptr;
    vmiNode* last_child_ = nullptr;
    vmiNode* next_ = nullptr;
    giXform3 xform_;
    coPageArr<vmiObject*> objects_;
    vmiVelmcontur* velmcontur_ = nullptr;
    utString name_;
    [[maybe_unused]] int spare_[2] = {0, 0};

    friend struct vmiNodeWalk;
};
