// vmiFile: the node tree built from a parsed catalogue. Level-1 and level-2
// records make the groups; a level-3 record of a scan or image hangs one
// object under the scan group of the current level-2 group, one of an
// orthotic model a contour record under its model group. The three options
// of the host's resource table decide which records are taken.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiDesignAhead.h"
#include "archive/vmiFile.h"
#include "archive/vmiNode.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObject.h"
#include "archive/vmiReadObserver.h"
#include "archive/vmiVlkElement.h"
#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"
#include "host/qorResourceTable.h"

namespace {

// Scan records of a type2 beyond this are not taken; up to scan_type2_max
// they are scans, above it images.
constexpr int scan_type2_max = 102;
constexpr int image_type2_max = 205;
// The objects of one catalogue get levels from this one on, a scan's image
// the level of its scan.
constexpr int first_scan_level = 10;
// The first bytes of a contour record's data entry.
constexpr const char* contour_magic = "0001";

// The side a type2 names (modulo 100: 1 left, 2 right); any other value
// leaves the side as it was.
void set_side(utString& side, const int& type2)
{
    const int r = type2 % 100;
    if (r == 2)
        side = "(RIGHT)_";
    else if (r == 1)
        side = "(LEFT)_";
}

long long grid_points(vmiBaseGrid* grid)
{
    return grid ? static_cast<long long>(grid->x_size()) * grid->y_size() : 0;
}

// The grid nodes a contour record keeps: its grid objects and, when it was
// not finished, its working and base grids.
long long model_points(vmiVelmcontur* record)
{
    long long n = grid_points(record->working_grid()) + grid_points(record->base_grid());
    for (vmiObject* o : record->objects())
        if (o && o->grid())
            n += grid_points(o->grid()->grid());
    return n;
}

// A new group under parent; null when it cannot be allocated.
vmiNode* add_group(vmiNode* parent, utString name, const int& type)
{
    vmiNode* node = new (std::nothrow) vmiNode(std::move(name), type);
    if (node)
        parent->add(node);
    return node;
}

} // namespace

// What one catalogue's records share while they are turned into nodes.
struct vmiFile::fill_state {
    // Level-2 groups met before any level-1 group belong nowhere in the tree;
    // they are kept here, with what hangs on them, until the catalogue is done.
    vmiNode detached;
    vmiNode* level2 = nullptr;
    vmiNode* scan_group = nullptr;
    vmiNode* model_group = nullptr;
    utString title;
    utString side;
    utString latest;   // the latest name built, given to an image's node
    int level_counter = first_scan_level;
    int last_scan_level = 0;
    int scan_offset = 0;
    // Designs built before their record's turn: one on a second thread, and
    // one built here while that thread finishes the record whose turn it is.
    vmiDesignAhead ahead;
    const vmiVlkElement* early_record = nullptr;
    int early_identifier = 0;
    std::unique_ptr<vmiVelmcontur> early;

    explicit fill_state(bool designs_ahead) : ahead(designs_ahead) {}
};

namespace {

bool is_model(const vmiVlkElement& e)
{
    return e.level() == 3 && e.type1() == 3;
}

// The first model record after e (from the catalogue's start when e is null).
const vmiVlkElement* next_model(const vmiVlk& catalogue, const vmiVlkElement* e)
{
    const vmiVlkElement* next = e ? e->next() : catalogue.first();
    while (next && !is_model(*next))
        next = next->next();
    return next;
}

// The model records from e up to m, e counted and m not: how many
// identifiers are given out before m's when every one of them is kept.
int models_before(const vmiVlkElement& e, const vmiVlkElement& m)
{
    int n = 0;
    for (const vmiVlkElement* k = &e; k && k != &m; k = k->next())
        n += is_model(*k) ? 1 : 0;
    return n;
}

}  // namespace

void vmiFile::read_options()
{
    qorResourceTable* table = qor_resource_table_inquire();
    auto on = [table](const char* key) {
        return !table || table->bool_value(utBoolcoResourceKey(utString(key)), 1) != 0;
    };
    scan_on_ = on(opt_process_scan_data);
    image_on_ = on(opt_process_image_data);
    orthotic_on_ = on(opt_process_orthotic_data);
}

void vmiFile::fill_node()
{
    read_options();
    fill_state s(designs_ahead_);
    // The first model's design starts at once, while the scans are read.
    if (const vmiVlkElement* first = next_model(catalogue_, nullptr))
        hand_over(*first, contour_counter_, s.ahead);
    for (vmiVlkElement* e = catalogue_.first(); e; e = e->next()) {
        if (e->level() == 1)
            fill_level1(*e, s);
        else if (e->level() == 2)
            fill_level2(*e, s);
        else if (e->level() == 3 && e->type1() == 1)
            fill_scan(*e, s);
        else if (e->level() == 3 && e->type1() == 3)
            fill_model(*e, s);
        else if (e->level() == 3)
            skip(record_skip(*e, vmiSkipReason::unknown_record));
    }
}

void vmiFile::fill_level1(const vmiVlkElement& e, fill_state& s)
{
    if (!root_)
        root_ = new (std::nothrow) vmiNode(utString("Data Base"), vmiNode::group_type);
    if (!root_)
        return;
    utString name = e.name0() + utString(",") + e.name1();
    vmiNode* node = add_group(root_, name, vmiNode::group_type);
    if (!node)
        return;
    s.latest = name;
    current_level1_ = node;
}

void vmiFile::fill_level2(const vmiVlkElement& e, fill_state& s)
{
    utString name = e.name1() + utString(" : ") + e.name0();
    s.level2 = add_group(current_level1_ ? current_level1_ : &s.detached, name, vmiNode::level2_type);
    s.scan_group = nullptr;
    s.model_group = nullptr;
    s.title = e.name1();
    s.latest = name;
}

void vmiFile::fill_scan(const vmiVlkElement& e, fill_state& s)
{
    // Before any level-2 group a record has no group to hang on.
    if (!scan_on_ && !image_on_) {
        skip(record_skip(e, vmiSkipReason::option_off));
        return;
    }
    if (!s.level2) {
        skip(record_skip(e, vmiSkipReason::no_group));
        return;
    }
    const int type2 = e.type2();
    if (type2 > image_type2_max) {
        skip(record_skip(e, vmiSkipReason::unknown_record));
        return;
    }
    if (!s.scan_group)
        s.scan_group = add_group(s.level2, utString("VelmScan(") + s.title + utString(")"),
                                 vmiNode::scan_group_type);
    if (!s.scan_group)
        return;
    if (type2 <= scan_type2_max) {
        set_side(s.side, type2);
        if (scan_on_) {
            vmiObject* object = extract_obj(e.data_indx());
            if (!object) {
                if (observer_)
                    skip(object_refusal(e));
                return;
            }
            utString name = utString("SCAN_") + s.side + e.date();
            vmiNode* node = add_group(s.scan_group, name, vmiNode::scan_type);
            if (!node) {
                delete object;
                return;
            }
            object->level(s.level_counter);
            object->layer_name(name);
            object->name(name);
            s.scan_offset = object->data_offset();
            node->add(object);
            s.latest = name;
            s.last_scan_level = s.level_counter++;
            return;
        }
    }
    if (!image_on_) {
        skip(record_skip(e, vmiSkipReason::option_off));
        return;
    }
    // An image keeps the side, the level and the name of the scan before it.
    scan_data_offset_ = s.scan_offset;
    vmiObject* object = extract_obj(e.data_indx());
    if (!object) {
        if (observer_)
            skip(object_refusal(e));
        return;
    }
    vmiNode* node = add_group(s.scan_group, s.latest, vmiNode::scan_type);
    if (!node) {
        delete object;
        return;
    }
    object->level(s.last_scan_level);
    object->layer_name(s.latest);
    object->name(utString("IMAGE_") + s.side + e.date());
    node->add(object);
}

void vmiFile::fill_model(const vmiVlkElement& e, fill_state& s)
{
    // The design built before this record's turn, if it was built with the
    // identifier the record gets now; dropped when the record is skipped.
    std::unique_ptr<vmiVelmcontur> ahead(take_early(e, s));
    if (!orthotic_on_ || !s.level2) {
        skip(record_skip(e, orthotic_on_ ? vmiSkipReason::no_group : vmiSkipReason::option_off));
        return;
    }
    if (!s.model_group)
        s.model_group = add_group(s.level2, utString("PCS models(") + s.title + utString(")"),
                                  vmiNode::model_group_type);
    if (!s.model_group)
        return;
    set_side(s.side, e.type2());
    vmiVelmcontur* record = ahead.release();
    if (!record) {
        // The next model's design is built meanwhile, as if this one is kept.
        if (const vmiVlkElement* next = next_model(catalogue_, &e))
            hand_over(*next, contour_counter_ + 1, s.ahead);
        record = extract_velmcontur_data(e.data_indx(), contour_counter_, model_base_grid(e));
    }
    if (!record) {
        if (observer_)
            skip(data_refusal(e, contour_magic));
        return;
    }
    // A design whose height sections passed their work budget is incomplete.
    if (record->over_budget()) {
        const vmiWorkBudget work = record->work();
        delete record;
        skip(record_skip(e, vmiSkipReason::bound_exceeded)
                 .with_bound("vmiWorkBudget::max_design_work", work.used(), work.limit()));
        return;
    }
    // A model's grids are known once it is built; one the budget cannot
    // take is dropped again.
    const long long points = model_points(record);
    if (!take_points(points)) {
        delete record;
        skip(record_skip(e, vmiSkipReason::bound_exceeded).with_bound("max_tree_points", tree_points_ + points,
                        point_budget_));
        return;
    }
    vmiNode* node = new (std::nothrow) vmiNode(utString("MODEL_") + s.side + e.date(), vmiNode::model_type);
    if (!node) {
        delete record;
        return;
    }
    node->velmcontur(record);
    s.model_group->add(node);
    ++contour_counter_;
}

vmiBaseGrid* vmiFile::model_base_grid(const vmiVlkElement& e)
{
    // The height grid comes from the data of the first record numbered
    // ref_indx; without one the model is built over no grid.
    vmiVlkElement* ref = catalogue_.get(e.ref_indx());
    return ref ? get_base_grid(ref->data_indx()) : nullptr;
}

void vmiFile::hand_over(const vmiVlkElement& m, int identifier, vmiDesignAhead& ahead)
{
    if (!ahead.free() || !orthotic_on_)
        return;
    // Its text is checked and its grid read here, as the record would.
    vmiBaseGrid* grid = model_base_grid(m);
    if (!select_dat(m.data_indx(), contour_magic)) {
        delete grid;
        return;
    }
    ahead.start(&m, start_, len_, identifier, grid, design_work_limit_);
}

vmiVelmcontur* vmiFile::take_early(const vmiVlkElement& e, fill_state& s)
{
    if (s.early_record == &e) {
        s.early_record = nullptr;
        if (s.early_identifier != contour_counter_)
            s.early.reset();
        return s.early.release();
    }
    if (!s.ahead.holds(&e))
        return nullptr;
    // While the second thread finishes this record's design, the next
    // model's is built here, as if this one is kept.
    const vmiVlkElement* next = next_model(catalogue_, &e);
    if (next && !s.early_record && orthotic_on_) {
        s.early.reset(extract_velmcontur_data(next->data_indx(), contour_counter_ + 1, model_base_grid(*next)));
        if (s.early) {
            s.early_record = next;
            s.early_identifier = contour_counter_ + 1;
        }
    }
    vmiVelmcontur* design = s.ahead.take(&e, contour_counter_);
    // The thread is free again: it takes the model after those built.
    if (const vmiVlkElement* after = next_model(catalogue_, s.early_record ? s.early_record : &e))
        hand_over(*after, contour_counter_ + models_before(e, *after), s.ahead);
    return design;
}

bool vmiFile::select_dat(const int& indx, const char* magic)
{
    vmiArchiveElement* e = archive_.get(vmiEntryKind::data, indx);
    if (!e)
        return false;
    init_dat(e->buf(), e->len());
    return !is_end(4) && std::memcmp(start_, magic, 4) == 0;
}

long long vmiFile::declared_points()
{
    char* at = pos_;
    pass(8);
    const long long nx = int32();
    const long long ny = int32();
    pos_ = at;
    return nx > 0 && ny > 0 ? nx * ny : 0;
}

bool vmiFile::take_points(const long long& n)
{
    if (n > point_budget_ - tree_points_)
        return false;
    tree_points_ += n;
    return true;
}

vmiReadSkip vmiFile::record_skip(const vmiVlkElement& e, vmiSkipReason reason) const
{
    vmiReadSkip why(reason, vlk_name_);
    why.record = e.indx();
    why.data_indx = e.data_indx();
    if (reason == vmiSkipReason::unknown_record) {
        why.value = e.type1();
        why.limit = e.type2();
    } else if (reason == vmiSkipReason::option_off) {
        why.bound = e.type1() == 3                      ? opt_process_orthotic_data
                    : e.type2() <= scan_type2_max && !scan_on_ ? opt_process_scan_data
                                                        : opt_process_image_data;
    }
    return why;
}

vmiReadSkip vmiFile::data_refusal(const vmiVlkElement& e, const char* magic)
{
    const vmiArchiveElement* d = archive_.get(vmiEntryKind::data, e.data_indx());
    if (!d)
        return record_skip(e, vmiSkipReason::entry_not_found);
    init_dat(d->buf(), d->len());
    if (is_end(4) || std::memcmp(start_, magic, 4) != 0) {
        vmiReadSkip why = record_skip(e, vmiSkipReason::wrong_magic);
        why.found.assign(start_, static_cast<std::size_t>(std::min(len_, 4)));
        why.wanted = magic;
        return why;
    }
    return record_skip(e, vmiSkipReason::bad_record);
}

vmiReadSkip vmiFile::object_refusal(const vmiVlkElement& e)
{
    const bool model = select_dat(e.data_indx(), "PCSC");
    if (!model && !select_dat(e.data_indx(), "PCIM"))
        return data_refusal(e, e.type2() <= scan_type2_max ? "PCSC" : "PCIM");
    if (!(model ? scan_on_ : image_on_)) {
        vmiReadSkip why = record_skip(e, vmiSkipReason::option_off);
        why.bound = model ? opt_process_scan_data : opt_process_image_data;
        return why;
    }
    pass(4);
    const long long points = declared_points();
    pass(8);
    const long long nx = int32();
    const long long ny = int32();
    const vmiReadSkip over = record_skip(e, vmiSkipReason::bound_exceeded);
    if (nx < 0 || ny < 0)
        return record_skip(e, vmiSkipReason::bad_record);
    // A record too large on its own names its own bound, not the tree's.
    if (model && !vmiBaseGrid::size_allowed(nx, ny))
        return over.with_bound("vmiBaseGrid::max_nodes", nx * ny, vmiBaseGrid::max_nodes);
    if (!model && !image_size_allowed(nx, ny))
        return over.with_bound("max_image_pixels", nx * ny, max_image_pixels);
    if (points > point_budget_ - tree_points_)
        return over.with_bound("max_tree_points", tree_points_ + points, point_budget_);
    return record_skip(e, vmiSkipReason::bad_record);
}

vmiObject* vmiFile::extract_obj(const int& indx)
{
    const bool model = select_dat(indx, "PCSC");
    if (!model && !select_dat(indx, "PCIM"))
        return nullptr;
    if (!(model ? scan_on_ : image_on_))
        return nullptr;
    pass(4);
    // The points are counted before they are made: a record the budget
    // cannot take is not read at all.
    const long long points = declared_points();
    if (points > point_budget_ - tree_points_)
        return nullptr;
    vmiObject* object = model ? create_triblock_from_pscs() : create_cloud_from_pcim();
    if (object)
        take_points(points);
    return object;
}

vmiVelmcontur* vmiFile::extract_velmcontur_data(const int& indx, const int& counter, vmiBaseGrid* grid)
{
    std::unique_ptr<vmiBaseGrid> owned(grid);
    if (!orthotic_on_ || !select_dat(indx, contour_magic))
        return nullptr;
    // The record parses the whole text, magic included, and keeps the grid.
    vmiBaseGrid* kept = owned.release();
    vmiVelmcontur* record = new (std::nothrow) vmiVelmcontur(start_, len_, counter, kept, design_work_limit_);
    if (!record)
        delete kept;
    return record;
}

qorabsTranslatorcoPrf vmiFile::make_translator(const qorabsContext& context, int index)
{
    (void)index;
    if (!root_)
        return {};
    double offset = 0.0;
    root_->check_shear(offset);
    return root_->make_translator(context);
}

vmiNode* vmiFile::find_node(const utString& name)
{
    return root_ ? root_->find_node(name) : nullptr;
}

vmiObject* vmiFile::find_obj(const utString& name)
{
    return root_ ? root_->find_obj(name) : nullptr;
}

int vmiFile::common_no_of_obj()
{
    return root_ ? root_->common_no_of_obj() : 0;
}

int vmiFile::common_no_of_obj(const int& level)
{
    return root_ ? root_->common_no_of_obj(level) : 0;
}
