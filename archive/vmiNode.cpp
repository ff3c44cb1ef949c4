#include "archive/vmiNode.h"

#include <limits>
#include <new>

#include "archive/vmiObject.h"
#include "contour/vmiVelmcontur.h"
#include "host/giBox3.h"
#include "translate/vmiGroupTranslator.h"

// The searches and counts over the tree. Each is defined on a node as
// "itself, else its next sibling's walk, then its children's"; followed
// literally that recursion goes one call deeper for every sibling, and a
// sibling list is as long as the catalogues make it. The loops below give the
// same results walking each sibling list once, front to back.
struct vmiNodeWalk {
    // Count of a node that answers for itself, of every object or of those
    // of one level (level null: every object).
    static unsigned own_count(vmiNode* n, const int* level)
    {
        coPageArr<vmiObject*>* objects =
            n->objects_.size() > 0 ? &n->objects_ : &n->velmcontur_->objects();
        if (!level)
            return static_cast<unsigned>(objects->size());
        unsigned count = 0;
        for (vmiObject* o : *objects)
            if (o && o->level() == *level)
                ++count;
        return count;
    }

    // The count of start itself: its run of siblings up to and including the
    // first that answers for itself, each adding its children's count.
    // Counts are summed modulo 2^32, as an int sum that overflowed would wrap.
    static unsigned count_from(vmiNode* start, const int* level)
    {
        unsigned sum = 0;
        for (vmiNode* n = start; n; n = n->next_) {
            if (n->holds_objects())
                return sum + own_count(n, level);
            sum += count_children(n, level);
        }
        return sum;
    }

    // The sum of every child's count. A child's count runs on through its
    // siblings to the next one that answers for itself, so a child is counted
    // once for itself and once for each earlier sibling in its run.
    static unsigned count_children(vmiNode* parent, const int* level)
    {
        unsigned total = 0;
        unsigned run = 0;
        for (vmiNode* n = parent->first_child_; n; n = n->next_) {
            ++run;
            if (n->holds_objects()) {
                total += run * own_count(n, level);
                run = 0;
            } else {
                total += run * count_children(n, level);
            }
        }
        return total;
    }

    // The first object of the name among a node's own objects (or its
    // contour record's); null when none.
    static vmiObject* own_search(vmiNode* n, const utString& name)
    {
        coPageArr<vmiObject*>& objects =
            n->objects_.size() > 0 ? n->objects_ : n->velmcontur_->objects();
        for (vmiObject* o : objects)
            if (o && o->name() == name)
                return o;
        return nullptr;
    }

    // find_obj of start: a node that answers for itself ends the run; before
    // it, a later sibling's children were searched before an earlier one's,
    // so the last hit in list order wins.
    static vmiObject* find_obj_from(vmiNode* start, const utString& name)
    {
        vmiObject* last_hit = nullptr;
        for (vmiNode* n = start; n; n = n->next_) {
            if (n->holds_objects()) {
                vmiObject* hit = own_search(n, name);
                return hit ? hit : last_hit;
            }
            if (vmiObject* hit = find_obj_children(n, name))
                last_hit = hit;
        }
        return last_hit;
    }

    // The children's searches in order, the first hit winning: the runs of
    // children up to the next one that answers for itself, each as above.
    static vmiObject* find_obj_children(vmiNode* parent, const utString& name)
    {
        vmiObject* last_hit = nullptr;
        for (vmiNode* n = parent->first_child_; n; n = n->next_) {
            if (n->holds_objects()) {
                if (vmiObject* hit = own_search(n, name))
                    return hit;
                if (last_hit)
                    return last_hit;
                continue;
            }
            if (vmiObject* hit = find_obj_children(n, name))
                last_hit = hit;
        }
        return last_hit;
    }

    // find_node of start: the names of start and its following siblings in
    // order; then their children, the last sibling's first (its search
    // returns before the earlier one goes on to its own children).
    static vmiNode* find_node_from(vmiNode* start, const utString& name)
    {
        for (vmiNode* n = start; n; n = n->next_)
            if (n->name_ == name)
                return n;
        vmiNode* last_hit = nullptr;
        for (vmiNode* n = start; n; n = n->next_)
            if (n->first_child_)
                if (vmiNode* hit = find_node_from(n->first_child_, name))
                    last_hit = hit;
        return last_hit;
    }
};

vmiNode::vmiNode() = default;

vmiNode::vmiNode(utString name) : name_(std::move(name)) {}

vmiNode::vmiNode(utString name, int type) : type_(type), name_(std::move(name)) {}

vmiNode::~vmiNode()
{
    // The children one after the other: each takes its own subtree with it,
    // but not its siblings.
    vmiNode* child = first_child_;
    while (child) {
        vmiNode* following = child->next_;
        child->next_ = nullptr;
        delete child;
        child = following;
    }
    delete velmcontur_;
    for (vmiObject* o : objects_)
        delete o;
}

void vmiNode::add(vmiNode* child)
{
    if (!child || child == this)
        return;
    if (last_child_)
        last_child_->next_ = child;
    else
        first_child_ = child;
    // A child handed over with siblings of its own brings them along.
    last_child_ = child;
    while (last_child_->next_)
        last_child_ = last_child_->next_;
}

void vmiNode::add(vmiObject* object)
{
    if (!object)
        return;
    try {
        objects_.add(object);
    } catch (const std::bad_alloc&) {
        delete object;
    }
}

void vmiNode::velmcontur(vmiVelmcontur* record)
{
    if (record == velmcontur_)
        return;
    delete velmcontur_;
    velmcontur_ = record;
}

bool vmiNode::holds_objects() const
{
    return objects_.size() > 0 || velmcontur_ != nullptr;
}

vmiNode* vmiNode::find_node(const utString& name)
{
    return vmiNodeWalk::find_node_from(this, name);
}

vmiObject* vmiNode::find_obj(const utString& name)
{
    return vmiNodeWalk::find_obj_from(this, name);
}

int vmiNode::common_no_of_obj()
{
    return static_cast<int>(vmiNodeWalk::count_from(this, nullptr));
}

int vmiNode::common_no_of_obj(const int& level)
{
    return static_cast<int>(vmiNodeWalk::count_from(this, &level));
}

namespace {

// max - min of a box's coordinate; the largest double where the box stays
// invalid in it (its corners still hold the largest and the lowest double).
double extent(const double& min, const double& max)
{
    if (!(min <= max))
        return std::numeric_limits<double>::max();
    return max - min;
}

} // namespace

void vmiNode::size(double& xlength, double& ylength)
{
    xlength = 0.0;
    ylength = 0.0;
    coPageArr<vmiObject*>* objects = &objects_;
    if (objects_.size() == 0 && velmcontur_)
        objects = &velmcontur_->objects();
    if (objects->size() == 0)
        return;
    giBox3 box;
    for (vmiObject* o : *objects)
        if (o)
            box.merge(o->box());
    xlength = extent(box.min().x(), box.max().x());
    ylength = extent(box.min().y(), box.max().y());
}

void vmiNode::check_shear(double& offset)
{
    if (type_ != scan_group_type && type_ != model_group_type) {
        for (vmiNode* child = first_child_; child; child = child->next_)
            child->check_shear(offset);
        return;
    }
    // The members side by side in x; the group's band as high as its
    // highest member.
    double x = 0.0;
    double highest = 0.0;
    for (vmiNode* child = first_child_; child; child = child->next_) {
        double xlength = 0.0;
        double ylength = 0.0;
        child->size(xlength, ylength);
        child->xform_.premultiply_translation(giVector3(x, offset, 0.0));
        x += xlength;
        if (ylength > highest)
            highest = ylength;
    }
    offset += highest;
}

qorabsTranslatorcoPrf vmiNode::make_translator(const qorabsContext& context)
{
    std::shared_ptr<vmiGroupTranslator> group = vmiGroupTranslator::make(name_, xform_, context);
    if (!group)
        return {};
    if (first_child_) {
        // A node with children hands over only its children, never its own objects.
        for (vmiNode* child = first_child_; child; child = child->next_)
            group->add_translator(child->make_translator(context));
        return group;
    }
    coPageArr<vmiObject*>* objects = &objects_;
    if (objects_.size() == 0 && velmcontur_)
        objects = &velmcontur_->objects();
    for (vmiObject* o : *objects)
        if (o)
            group->add_object(o);
    return group;
}
