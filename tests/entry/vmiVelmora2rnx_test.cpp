// The library as the host sees it: loaded with dlopen, its exported entry
// points, the identity of its instance, the slots of its operations, the
// options it registers, and read_input's result and translators.
#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "entry/vmiVelmora2rnx.h"
#include "host/qouFileType.h"
#include "tests/entry/PluginHost.h"
#include "tests/support/vlmWriter.h"
#include "tests/translate/VtableSlot.h"

using plugin_host::instance;
using plugin_host::library;
using plugin_host::run_import;

namespace {

std::string scan_entry()
{
    vlm::height_grid g;
    g.nx = 2;
    g.ny = 2;
    g.codes = {1, 2, 3, 4};
    return vlm::chunk_chain(vlm::grid_entry(g), 200);
}

std::string written(const vlm::archive& a, const std::string& tag)
{
    const std::string path = vlm::temp_path(tag);
    EXPECT_TRUE(a.write(path));
    return path;
}

} // namespace

TEST(vmiVelmora2rnx, Library_ExportsGetInstanceAndConvertFromUnmangled)
{
    library& lib = library::get();
    ASSERT_NE(lib.handle, nullptr) << lib.error;
    ASSERT_NE(lib.get_instance, nullptr);
    ASSERT_NE(lib.convert_from, nullptr);
    lib.convert_from();   // an empty entry point
}

TEST(vmiVelmora2rnx, Library_RegistersItsThreeOptionsOnWhenLoaded)
{
    ASSERT_NE(library::get().handle, nullptr) << library::get().error;
    qorResourceTable* table = qor_resource_table_inquire();
    for (const char* key : {"vmiOptProcessScanData", "vmiOptProcessImageData", "vmiOptProcessOrthoticData"}) {
        utBoolcoResource* r = table->find(utBoolcoResourceKey(utString(key)));
        ASSERT_NE(r, nullptr) << key;
        EXPECT_EQ(r->default_value(), 1) << key;
        EXPECT_EQ(r->value(), 1) << key;
    }
}

TEST(vmiVelmora2rnx, Library_InstanceTellsItsIdentity)
{
    std::unique_ptr<qorabsLibInputEx> input = instance();
    ASSERT_NE(input, nullptr);
    EXPECT_STREQ(input->library_name(), "velmora2rnx");
    EXPECT_STREQ(input->option(), "VELMORA");
    EXPECT_EQ(input->database_number(), 145);
    EXPECT_STREQ(input->file_filter(), "Velmora Files (*.vlm)|*.vlm");
    EXPECT_STREQ(input->format_name(), "Velmora");
    ASSERT_NE(input->translator_category(), nullptr);
    EXPECT_EQ(input->translator_category()->name(), utString("FOOTWEAR"));
    EXPECT_EQ(input->app_info(), &plugin_host::app_info());
    intcoSet types;
    input->add_file_types(types);
    ASSERT_EQ(types.size(), 1);
    EXPECT_EQ(types[0], int(qouFileType(qouVELMORA)));
    EXPECT_EQ(input->num_objects(), 0);
}

TEST(vmiVelmora2rnx, Library_AddExtensionsLeavesTheSetItIsGivenUntouched)
{
    std::unique_ptr<qorabsLibInputEx> input = instance();
    ASSERT_NE(input, nullptr);
    utStringcoSet empty;
    input->add_extensions(empty);
    EXPECT_TRUE(empty.empty());
    utStringcoSet some;
    some.add(utString("stl"));
    some.add(utString("vlm"));
    input->add_extensions(some);
    ASSERT_EQ(some.size(), 2);
    EXPECT_EQ(some[0], utString("stl"));
    EXPECT_EQ(some[1], utString("vlm"));
}

TEST(vmiVelmora2rnx, Library_OperationsKeepTheHostsSlots)
{
    // Destructor in slot 11 (two entries).
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::set_output), entry_of_slot(1, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::set_error), entry_of_slot(2, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::library_name), entry_of_slot(3, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::option), entry_of_slot(4, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::database_number), entry_of_slot(5, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::add_file_types), entry_of_slot(6, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::add_extensions), entry_of_slot(7, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::file_filter), entry_of_slot(8, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::format_name), entry_of_slot(9, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::translator_category), entry_of_slot(10, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::operator++), entry_of_slot(12, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::num_objects), entry_of_slot(13, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::attributes), entry_of_slot(14, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::send_to), entry_of_slot(15, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::read_input), entry_of_slot(16, 11));
    EXPECT_EQ(vtable_entry(&vmiVelmora2rnx::check_file_size), entry_of_slot(17, 11));
}

TEST(vmiVelmora2rnx, ReadInput_FileThatIsNotAZipGivesZeroAndNoTranslator)
{
    const std::string path = vlm::temp_path("entry_not_a_zip.vlm");
    ASSERT_TRUE(vlm::write_file(path, "1,Client,Case\n"));
    plugin_host::import_result r = run_import(path);
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.translators, 0);
    EXPECT_TRUE(r.events.empty());
    std::remove(path.c_str());
}

TEST(vmiVelmora2rnx, ReadInput_ZipWithoutACatalogueEntryGivesZeroAndNoTranslator)
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_entry());
    a.add("readme.txt", vlm::catalogue().separator().level1("a", "b").text());
    const std::string path = written(a, "entry_no_catalogue.vlm");
    plugin_host::import_result r = run_import(path);
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.translators, 0);
    std::remove(path.c_str());
}

TEST(vmiVelmora2rnx, ReadInput_MissingFileGivesZero)
{
    plugin_host::import_result r = run_import(vlm::temp_path("entry_never_written.vlm"));
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.translators, 0);
}

TEST(vmiVelmora2rnx, ReadInput_ValidArchiveHandsOverExactlyOneTranslatorTheRootGroup)
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_entry());
    a.add("00000.vlk", vlm::catalogue()
                           .separator()
                           .level1("Client", "Case")
                           .level2("Left", "Scans")
                           .level3(1, 1, 0, 101, "d", "", "", 5)
                           .text());
    const std::string path = written(a, "entry_valid.vlm");
    plugin_host::import_result r = run_import(path);
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.translators, 1);
    ASSERT_FALSE(r.events.empty());
    EXPECT_EQ(r.events.front().kind, "begin");
    EXPECT_EQ(r.events.front().name, "Data Base");
    EXPECT_EQ(r.events.front().depth, 0);
    EXPECT_EQ(r.events.back().kind, "end");
    EXPECT_EQ(r.events.back().depth, 0);
    std::remove(path.c_str());
}

TEST(vmiVelmora2rnx, ReadInput_WithAllThreeOptionsOffLevelGroupsStillGiveARootAndTheLevel2GroupsStayEmpty)
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_entry());
    a.add("00000.vlk", vlm::catalogue()
                           .separator()
                           .level1("Client", "Case")
                           .level2("Left", "Scans")
                           .level3(1, 1, 0, 101, "d", "", "", 5)
                           .level3(1, 2, 0, 201, "d", "", "", 5)
                           .level3(3, 3, 1, 1, "d", "", "", 5)
                           .text());
    const std::string path = written(a, "entry_options_off.vlm");
    option_set scans("vmiOptProcessScanData", 0);
    option_set images("vmiOptProcessImageData", 0);
    option_set orthotics("vmiOptProcessOrthoticData", 0);
    plugin_host::import_result r = run_import(path);
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.translators, 1);
    std::vector<std::string> walk;
    for (const SinkEvent& e : r.events)
        walk.push_back(e.kind + ":" + e.name);
    EXPECT_EQ(walk, (std::vector<std::string>{"begin:Data Base", "begin:Client,Case", "begin:Scans : Left", "end:",
                                              "end:", "end:"}));
    std::remove(path.c_str());
}
