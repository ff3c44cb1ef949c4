// A stand-in import plug-in for the tests of `velmora convert`, loaded with
// dlopen exactly as the real one. Its read_input hands over a small tree made
// from the library's group translators over object records:
//
//   Data Base (moved by (5, 0, 0))
//     VelmScan(A) (moved by (0, 7, 0)): a grid with colour index 3, a cloud
//       (both only while vmiOptProcessScanData is 1)
//     PCS models(B): a polyline with colour index 6
//
// A file whose first bytes are "EMPTY" imports nothing (read_input gives 0).
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "archive/vmiObjAttr.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObject.h"
#include "curves/m03DPoint.h"
#include "curves/m03DVector.h"
#include "host/qorResourceTable.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qorabsLibInputEx.h"
#include "translate/vmiGroupTranslator.h"

namespace {

const utBoolcoResourceKey scan_option(utString("vmiOptProcessScanData"));

// The option enters the host's table when the library is loaded.
const int entered = qor_resource_table_inquire()->enter(scan_option, utBoolcoResource(1));

giXform3 moved(double x, double y, double z)
{
    giXform3 m;
    m.premultiply_translation(giVector3(x, y, z));
    return m;
}

class TestInput : public qorabsLibInputEx {
public:
    using qorabsLibInputEx::qorabsLibInputEx;

    const char* library_name() const override { return "convert_test_plugin"; }
    const char* option() const override { return "TEST"; }
    int database_number() const override { return 0; }
    void add_file_types(intcoSet&) const override {}
    void add_extensions(utStringcoSet&) const override {}
    const char* file_filter() const override { return "Test (*.vlm)|*.vlm"; }
    const char* format_name() const override { return "Test"; }

    int read_input(const qorabsContext& context, qorabsIfStream& stream) override
    {
        std::ifstream in(stream.file_name().str(), std::ios::binary);
        std::string head(5, '\0');
        in.read(head.data(), 5);
        if (!in || head == "EMPTY") return 0;
        auto root = vmiGroupTranslator::make(utString("Data Base"), moved(5, 0, 0), context);
        auto a = vmiGroupTranslator::make(utString("VelmScan(A)"), moved(0, 7, 0), context);
        auto b = vmiGroupTranslator::make(utString("PCS models(B)"), giXform3(), context);
        if (qor_resource_table_inquire()->bool_value(scan_option, 1)) {
            a->add_object(add(grid()));
            a->add_object(add(cloud()));
        }
        b->add_object(add(polyline()));
        root->add_translator(a);
        root->add_translator(b);
        add_translator(root);
        return 1;
    }

private:
    vmiObject* add(std::unique_ptr<vmiObject> o)
    {
        objects_.push_back(std::move(o));
        return objects_.back().get();
    }

    static std::unique_ptr<vmiObject> grid()
    {
        auto* pts = new m03DPoint[4]{{0, 0, 1}, {10, 0, 1}, {0, 10, 1}, {10, 10, 2}};
        auto o = std::make_unique<vmiObject>(new vmiObjGrid(utString("SCAN_(LEFT)_1"), pts, 2, 2, 10.0, 10.0));
        o->level(10);
        o->layer_name(utString("SCAN"));
        o->attributes()->colour(3);
        return o;
    }

    static std::unique_ptr<vmiObject> cloud()
    {
        auto* p = new m03DPoint[2]{{1, 2, -5}, {3, 4, -5}};
        auto* c = new int[2]{0xFF0000, 0x808080};
        return std::make_unique<vmiObject>(new vmiObjCloud(utString("PCIM_2"), p, c, 2));
    }

    static std::unique_ptr<vmiObject> polyline()
    {
        auto* v = new m03DVector(3);
        for (int k = 0; k < 3; k++) v->set_point(k, m03DPoint(10.0 * k, 5.0 * (k % 2), 0));
        auto o = std::make_unique<vmiObject>(new vmiObjPoly(utString("LIMIT~1"), v));
        o->attributes()->colour(6);
        return o;
    }

    std::vector<std::unique_ptr<vmiObject>> objects_;
};

} // namespace

extern "C" __attribute__((visibility("default"))) qorabsLibInputEx* get_instance(const qorabsAppInfo* app)
{
    (void)entered;
    return new (std::nothrow) TestInput(app);
}
