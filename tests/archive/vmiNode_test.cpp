// vmiNode: children and objects, the searches and counts over siblings and
// children (against their recursive definition), the extent of a node, the
// side-by-side layout and node translation.
#include <pthread.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/vmiNode.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObject.h"
#include "contour/vmiVelmcontur.h"
#include "curves/m03DPoint.h"
#include "host/qorabsContext.h"
#include "host/qorabsTranslator.h"
#include "tests/translate/RecordingSink.h"

namespace {

// A cloud object of the given points (none: an empty cloud), name and level.
vmiObject* cloud(const std::string& name, std::vector<m03DPoint> pts = {}, int level = 0)
{
    const int n = static_cast<int>(pts.size());
    m03DPoint* points = new m03DPoint[static_cast<std::size_t>(n)];
    int* colours = new int[static_cast<std::size_t>(n)];
    for (int k = 0; k < n; ++k) {
        points[k] = pts[static_cast<std::size_t>(k)];
        colours[k] = 0;
    }
    vmiObject* o = new vmiObject(new vmiObjCloud(utString(name), points, colours, n));
    o->level(level);
    return o;
}

vmiNode* child(vmiNode* parent, const std::string& name, int type = vmiNode::group_type)
{
    vmiNode* n = new vmiNode(utString(name), type);
    parent->add(n);
    return n;
}

// ---- the walks as the node's operations define them, recursing through
// the sibling chain: the reference for the loops ----

// "n3", "o5": a letter and a number (appended, which GCC 12 does not
// mistake for an overlapping copy).
std::string tag(char letter, int k)
{
    std::string s(1, letter);
    s += std::to_string(k);
    return s;
}

bool answers_for_itself(vmiNode* n)
{
    return n->no_of_objects() > 0 || n->velmcontur();
}

coPageArr<vmiObject*>& own_objects(vmiNode* n)
{
    return n->no_of_objects() > 0 ? n->objects() : n->velmcontur()->objects();
}

unsigned ref_count(vmiNode* n, const int* level)
{
    if (answers_for_itself(n)) {
        unsigned c = 0;
        for (vmiObject* o : own_objects(n))
            if (!level || o->level() == *level)
                ++c;
        return c;
    }
    unsigned sum = n->next() ? ref_count(n->next(), level) : 0;
    for (vmiNode* c = n->first_child(); c; c = c->next())
        sum += ref_count(c, level);
    return sum;
}

vmiObject* ref_find_obj(vmiNode* n, const utString& name)
{
    if (answers_for_itself(n)) {
        for (vmiObject* o : own_objects(n))
            if (o->name() == name)
                return o;
        return nullptr;
    }
    if (n->next())
        if (vmiObject* o = ref_find_obj(n->next(), name))
            return o;
    for (vmiNode* c = n->first_child(); c; c = c->next())
        if (vmiObject* o = ref_find_obj(c, name))
            return o;
    return nullptr;
}

vmiNode* ref_find_node(vmiNode* n, const utString& name)
{
    if (n->name() == name)
        return n;
    if (n->next())
        if (vmiNode* r = ref_find_node(n->next(), name))
            return r;
    for (vmiNode* c = n->first_child(); c; c = c->next())
        if (vmiNode* r = ref_find_node(c, name))
            return r;
    return nullptr;
}

// A random tree of groups and leaves with few distinct names, so that the
// first match is decided by the walk's order.
void grow(vmiNode* parent, std::mt19937& rng, int depth, std::vector<vmiNode*>& all)
{
    std::uniform_int_distribution<int> kids(0, 5), pick(0, 9), name(0, 5);
    const int n = kids(rng);
    for (int k = 0; k < n; ++k) {
        vmiNode* c = child(parent, tag('n', name(rng)));
        all.push_back(c);
        const int p = pick(rng);
        if (depth < 4 && p < 5) {
            grow(c, rng, depth + 1, all);
        } else if (p < 9) {
            const int objects = p - 4;
            for (int o = 0; o < objects; ++o)
                c->add(cloud(tag('o', name(rng)), {}, name(rng) % 3));
        }
        // else: a group without children or objects
    }
}

} // namespace

TEST(vmiNode, Add_AppendsChildrenInOrderAndObjectsToTheNode)
{
    vmiNode root(utString("Data Base"));
    EXPECT_EQ(root.type(), vmiNode::group_type);
    vmiNode* a = child(&root, "a");
    vmiNode* b = child(&root, "b", vmiNode::level2_type);
    EXPECT_EQ(root.first_child(), a);
    EXPECT_EQ(root.last_child(), b);
    EXPECT_EQ(a->next(), b);
    EXPECT_EQ(b->next(), nullptr);
    EXPECT_EQ(b->type(), vmiNode::level2_type);
    b->add(cloud("x"));
    b->add(static_cast<vmiObject*>(nullptr));
    EXPECT_EQ(b->no_of_objects(), 1);
    EXPECT_TRUE(b->xform() == giXform3());
}

TEST(vmiNode, FindObj_NodeHoldingObjectsNeverLooksAtItsSiblingsOrChildren)
{
    vmiNode root(utString("root"));
    vmiNode* first = child(&root, "first");
    first->add(cloud("mine"));
    vmiNode* below = child(first, "below");
    below->add(cloud("wanted"));
    vmiNode* sibling = child(&root, "sibling");
    sibling->add(cloud("wanted"));
    EXPECT_EQ(first->find_obj(utString("wanted")), nullptr);
    EXPECT_EQ(first->find_obj(utString("mine")), first->objects()[0]);
    // From the parent, which holds nothing, the sibling's object is found.
    EXPECT_EQ(root.find_obj(utString("wanted")), sibling->objects()[0]);
}

TEST(vmiNode, FindObj_GroupSearchesItsFollowingSiblingsBeforeItsChildren)
{
    vmiNode root(utString("root"));
    vmiNode* g1 = child(&root, "g1");
    vmiNode* g2 = child(&root, "g2");
    child(g1, "leaf1")->add(cloud("x"));
    child(g2, "leaf2")->add(cloud("x"));
    // g1's own search goes to g2 (and g2's children) first.
    EXPECT_EQ(g1->find_obj(utString("x")), g2->first_child()->objects()[0]);
    EXPECT_EQ(root.find_obj(utString("x")), g2->first_child()->objects()[0]);
}

TEST(vmiNode, FindNode_NamesOfFollowingSiblingsComeBeforeChildren)
{
    vmiNode root(utString("root"));
    vmiNode* a = child(&root, "a");
    vmiNode* deep = child(a, "x");
    vmiNode* b = child(&root, "b");
    vmiNode* deeper = child(b, "y");
    vmiNode* x_sibling = child(&root, "x");
    EXPECT_EQ(a->find_node(utString("x")), x_sibling);
    EXPECT_EQ(root.find_node(utString("x")), x_sibling);
    EXPECT_EQ(root.find_node(utString("y")), deeper);
    EXPECT_EQ(deep->find_node(utString("x")), deep);
    EXPECT_EQ(root.find_node(utString("none")), nullptr);
    EXPECT_EQ(root.find_node(utString("root")), &root);
}

TEST(vmiNode, CommonNoOfObj_CountsAChildOnceForEachEarlierSiblingOfItsRun)
{
    // g1, g2, g3 each hold one leaf of one object: g1's count runs on
    // through g2 and g3, g2's through g3, so the parent sums 3 + 2 + 1.
    vmiNode root(utString("root"));
    vmiNode* a = child(&root, "a");
    for (const char* g : {"g1", "g2", "g3"})
        child(child(a, g), std::string(g) + "leaf")->add(cloud("o"));
    EXPECT_EQ(root.common_no_of_obj(), 6);
    EXPECT_EQ(a->first_child()->common_no_of_obj(), 3);
    // A node that holds objects answers with its own count.
    EXPECT_EQ(a->first_child()->first_child()->common_no_of_obj(), 1);
}

TEST(vmiNode, CommonNoOfObj_AtALevelCountsOnlyThatLevelOverTheSameWalk)
{
    vmiNode root(utString("root"));
    vmiNode* g = child(&root, "g");
    vmiNode* leaf = child(g, "leaf");
    leaf->add(cloud("a", {}, 10));
    leaf->add(cloud("b", {}, 11));
    leaf->add(cloud("c", {}, 11));
    vmiNode* other = child(g, "other");
    other->add(cloud("d", {}, 10));
    EXPECT_EQ(root.common_no_of_obj(), 4);
    EXPECT_EQ(root.common_no_of_obj(10), 2);
    EXPECT_EQ(root.common_no_of_obj(11), 2);
    EXPECT_EQ(root.common_no_of_obj(12), 0);
    // A node with objects none of which has the level still ends its run.
    EXPECT_EQ(leaf->common_no_of_obj(12), 0);
}

TEST(vmiNode, Walks_MatchTheirRecursiveDefinitionOnRandomTrees)
{
    std::mt19937 rng(20261122);
    for (int round = 0; round < 300; ++round) {
        vmiNode root(utString("root"));
        std::vector<vmiNode*> all{&root};
        grow(&root, rng, 0, all);
        for (vmiNode* n : all) {
            ASSERT_EQ(static_cast<unsigned>(n->common_no_of_obj()), ref_count(n, nullptr)) << round;
            for (int level = 0; level < 3; ++level)
                ASSERT_EQ(static_cast<unsigned>(n->common_no_of_obj(level)), ref_count(n, &level));
            for (int k = 0; k < 6; ++k) {
                const utString on(tag('o', k));
                const utString nn(tag('n', k));
                ASSERT_EQ(n->find_obj(on), ref_find_obj(n, on)) << round;
                ASSERT_EQ(n->find_node(nn), ref_find_node(n, nn)) << round;
            }
        }
    }
}

namespace {

struct long_list_result {
    int count = -1;
    int count_at_level = -1;
    vmiObject* found = nullptr;
    vmiNode* found_node = nullptr;
    vmiNode* missing_node = reinterpret_cast<vmiNode*>(1);
    double offset = -1.0;
};

struct long_list_job {
    vmiNode* root;
    long_list_result* result;
};

void* walk_long_list(void* arg)
{
    auto* job = static_cast<long_list_job*>(arg);
    job->result->count = job->root->common_no_of_obj();
    job->result->count_at_level = job->root->common_no_of_obj(7);
    job->result->found = job->root->find_obj(utString("last"));
    job->result->found_node = job->root->find_node(utString("leaf"));
    job->result->missing_node = job->root->find_node(utString("nowhere"));
    double offset = 0.0;
    job->root->check_shear(offset);
    job->result->offset = offset;
    delete job->root;
    return nullptr;
}

} // namespace

TEST(vmiNode, Walks_OverASiblingListOf100000GroupsRunOnASmallStack)
{
    // 100000 groups side by side, the last holding a leaf: a walk that
    // recursed through the sibling list would need some megabytes of stack;
    // these run (and the tree is deleted) on 256 KiB.
    constexpr int groups = 100000;
    vmiNode* root = new vmiNode(utString("root"));
    vmiNode* last = nullptr;
    for (int k = 0; k < groups; ++k)
        last = child(root, "g", vmiNode::level2_type);
    vmiNode* scans = child(last, "scans", vmiNode::scan_group_type);
    child(scans, "leaf", vmiNode::scan_type)->add(cloud("last", {m03DPoint(0, 0, 0), m03DPoint(2, 3, 0)}, 7));

    long_list_result result;
    long_list_job job{root, &result};
    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 256 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attr, walk_long_list, &job), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attr);

    // The last group's count is taken once for itself and once for each of
    // the 99999 groups before it.
    EXPECT_EQ(result.count, groups);
    EXPECT_EQ(result.count_at_level, groups);
    EXPECT_NE(result.found, nullptr);
    EXPECT_NE(result.found_node, nullptr);
    EXPECT_EQ(result.missing_node, nullptr);
    EXPECT_EQ(result.offset, 3.0);
}

TEST(vmiNode, Size_IsTheExtentOfTheObjectsAndZeroWithoutAny)
{
    vmiNode n(utString("n"), vmiNode::scan_type);
    double x = -1.0, y = -1.0;
    n.size(x, y);
    EXPECT_EQ(x, 0.0);
    EXPECT_EQ(y, 0.0);
    n.add(cloud("a", {m03DPoint(1, 2, 0), m03DPoint(4, 3, 9)}));
    n.add(cloud("b", {m03DPoint(-1, 7, 0)}));
    n.size(x, y);
    EXPECT_EQ(x, 5.0);
    EXPECT_EQ(y, 5.0);
}

TEST(vmiNode, Size_BoxThatStaysInvalidGivesTheLargestDouble)
{
    // An image of width 0 has no points: its box never becomes valid.
    vmiNode n(utString("n"), vmiNode::scan_type);
    n.add(cloud("empty"));
    double x = 0.0, y = 0.0;
    n.size(x, y);
    EXPECT_EQ(x, 1.7976931348623157e308);
    EXPECT_EQ(y, std::numeric_limits<double>::max());
}

TEST(vmiNode, Size_ModelNodeTakesItsContourRecordsObjects)
{
    vmiNode n(utString("MODEL_"), vmiNode::model_type);
    vmiVelmcontur* record = new vmiVelmcontur(nullptr, 0, 0, nullptr);
    record->objects().add(cloud("outline", {m03DPoint(0, 0, 0), m03DPoint(6, 2, 0)}));
    n.velmcontur(record);
    double x = 0.0, y = 0.0;
    n.size(x, y);
    EXPECT_EQ(x, 6.0);
    EXPECT_EQ(y, 2.0);
    EXPECT_EQ(n.common_no_of_obj(), 1);
    EXPECT_EQ(n.find_obj(utString("outline")), record->objects()[0]);
}

TEST(vmiNode, CheckShear_MembersSideBySideInXEachGroupInItsOwnBandInY)
{
    vmiNode root(utString("Data Base"));
    vmiNode* l2 = child(child(&root, "l1"), "l2", vmiNode::level2_type);
    vmiNode* scans = child(l2, "VelmScan(t)", vmiNode::scan_group_type);
    vmiNode* s1 = child(scans, "s1", vmiNode::scan_type);
    s1->add(cloud("a", {m03DPoint(10, 10, 0), m03DPoint(13, 12, 0)}));   // 3 x 2
    vmiNode* s2 = child(scans, "s2", vmiNode::scan_type);
    s2->add(cloud("b", {m03DPoint(0, 0, 0), m03DPoint(4, 5, 0)}));       // 4 x 5
    vmiNode* models = child(l2, "PCS models(t)", vmiNode::model_group_type);
    vmiNode* m1 = child(models, "m1", vmiNode::model_type);
    m1->add(cloud("c", {m03DPoint(0, 0, 0), m03DPoint(7, 1, 0)}));       // 7 x 1
    vmiNode* m2 = child(models, "m2", vmiNode::model_type);
    m2->add(cloud("d", {m03DPoint(0, 0, 0), m03DPoint(1, 1, 0)}));
    double offset = 0.0;
    root.check_shear(offset);
    EXPECT_TRUE(s1->xform().translation() == giVector3(0, 0, 0));
    EXPECT_TRUE(s2->xform().translation() == giVector3(3, 0, 0));
    EXPECT_TRUE(m1->xform().translation() == giVector3(0, 5, 0));
    EXPECT_TRUE(m2->xform().translation() == giVector3(7, 5, 0));
    EXPECT_EQ(offset, 6.0);
    // Groups themselves stay where they are.
    EXPECT_TRUE(scans->xform() == giXform3());
    EXPECT_TRUE(l2->xform() == giXform3());
}

TEST(vmiNode, MakeTranslator_NodeWithChildrenAndObjectsTranslatesOnlyItsChildren)
{
    qorabsContext context;
    vmiNode parent(utString("parent"));
    parent.add(cloud("own"));
    vmiNode* leaf = child(&parent, "leaf", vmiNode::scan_type);
    leaf->add(cloud("child object", {m03DPoint(1, 1, 1)}));
    qorabsTranslatorcoPrf t = parent.make_translator(context);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->num_translators(), 1);
    RecordingSink sink;
    t->process(sink, nullptr);
    std::vector<std::string> seen;
    for (const SinkEvent& e : sink.events)
        seen.push_back(e.kind + ":" + e.name);
    EXPECT_EQ(seen, (std::vector<std::string>{"begin:parent", "begin:leaf", "pointcloud:child object", "end:",
                                              "end:"}));
}

TEST(vmiNode, MakeTranslator_LeafHandsOverItsObjectsOrItsContourRecordsInOrder)
{
    qorabsContext context;
    vmiNode leaf(utString("leaf"), vmiNode::scan_type);
    leaf.add(cloud("first"));
    leaf.add(cloud("second"));
    qorabsTranslatorcoPrf t = leaf.make_translator(context);
    ASSERT_TRUE(t);
    ASSERT_EQ(t->num_translators(), 2);

    vmiNode model(utString("MODEL_"), vmiNode::model_type);
    vmiVelmcontur* record = new vmiVelmcontur(nullptr, 0, 0, nullptr);
    record->objects().add(cloud("outline"));
    record->objects().add(nullptr);   // an empty slot is passed over
    model.velmcontur(record);
    RecordingSink sink;
    model.make_translator(context)->process(sink, nullptr);
    ASSERT_EQ(sink.events.size(), 3u);
    EXPECT_EQ(sink.events[1].kind, "pointcloud");
    EXPECT_EQ(sink.events[1].name, "outline");
    EXPECT_EQ(sink.events[1].mangled, "MODEL__outline");
}
