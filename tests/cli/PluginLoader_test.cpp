// PluginLoader: one load of a plug-in serves both what it says about itself
// and the import, and a plug-in that does not load says why without
// repeating its file name.
#include "cli/PluginLoader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "cli/dump/DumpSink.h"

namespace {

std::string archive_file(const std::string& name, const std::string& content)
{
    const std::filesystem::path dir = std::filesystem::path(VELMORA_BINARY_DIR) / "plugin-loader-test";
    std::filesystem::create_directories(dir);
    const std::string p = (dir / name).string();
    std::ofstream(p, std::ios::binary) << content;
    return p;
}

} // namespace

TEST(PluginLoader, MissingLibrary_IsNotLoadedAndSaysWhyWithoutItsName)
{
    const std::string path = "/nonexistent/dir/libnothing.so";
    PluginLoader plugin(path);
    EXPECT_FALSE(plugin.loaded());
    EXPECT_EQ(plugin.path(), path);
    EXPECT_EQ(plugin.reason().rfind("cannot load the plug-in: ", 0), 0u) << plugin.reason();
    EXPECT_GT(plugin.reason().size(), std::string("cannot load the plug-in: ").size());
    EXPECT_EQ(plugin.reason().find(path), std::string::npos) << plugin.reason();
    DumpSink sink;
    EXPECT_EQ(plugin.import_archive(archive_file("a.vlm", "PK"), {}, sink), PluginLoader::no_library);
    EXPECT_TRUE(sink.top().empty());
    EXPECT_FALSE(plugin.identity().library_name.has_value());
}

TEST(PluginLoader, LibraryWithoutGetInstance_IsNotLoaded)
{
    const std::string path = std::string(VELMORA_BINARY_DIR) + "/lib/libqorabs.so";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is not built";
    PluginLoader plugin(path);
    EXPECT_FALSE(plugin.loaded());
    EXPECT_EQ(plugin.reason(), "cannot load the plug-in: no get_instance");
}

TEST(PluginLoader, OneLoad_AnswersItsIdentityAndImports)
{
    PluginLoader plugin(CONVERT_TEST_PLUGIN);
    ASSERT_TRUE(plugin.loaded()) << plugin.reason();
    EXPECT_EQ(plugin.identity().library_name, "convert_test_plugin");
    EXPECT_EQ(plugin.identity().format_name, "Test");
    DumpSink sink;
    ASSERT_EQ(plugin.import_archive(archive_file("b.vlm", "PK stand-in"), {}, sink), PluginLoader::imported);
    ASSERT_EQ(sink.top().size(), 1u);
    EXPECT_EQ(sink.top()[0]->mangled, "Data Base");
    EXPECT_EQ(plugin.identity().library_name, "convert_test_plugin");
}

TEST(PluginLoader, ReadThatGivesNothing_IsNothingImported)
{
    PluginLoader plugin(CONVERT_TEST_PLUGIN);
    DumpSink sink;
    EXPECT_EQ(plugin.import_archive(archive_file("c.vlm", "EMPTY"), {}, sink), PluginLoader::nothing_imported);
    EXPECT_TRUE(sink.top().empty());
}

TEST(PluginLoader, NoLibraryGiven_LoadsTheFileTheVariableNames)
{
    setenv(PluginLoader::library_variable, CONVERT_TEST_PLUGIN, 1);
    const PluginLoader plugin;
    unsetenv(PluginLoader::library_variable);
    EXPECT_EQ(plugin.path(), CONVERT_TEST_PLUGIN);
    EXPECT_TRUE(plugin.loaded()) << plugin.reason();
}
