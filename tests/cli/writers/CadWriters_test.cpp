// The STEP, IGES and DXF writers live in libvelmora_cad.so, which velmora
// loads only when it writes one of their formats: the library exports its
// entry alone, and a velmora without it still writes every other format.
#include "cli/writers/CadWriters.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "cli/ExitCode.h"
#include "tests/support/commandRun.h"
#include "tests/support/demoArchive.h"
#include "tests/support/vlmWriter.h"

namespace fs = std::filesystem;

TEST(CadWriters, LibraryIsFoundBesideTheCommandAndExportsItsEntryAlone)
{
    const std::string path = CadWriters::library_path();
    EXPECT_EQ(path, (fs::path(VELMORA_BINARY_DIR) / "lib" / CadWriters::library_file).string());
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    EXPECT_NE(dlsym(handle, CadWriters::entry_name), nullptr);
    // What the writers are made of stays inside.
    EXPECT_EQ(dlsym(handle, "_ZN10StepWriter5writeB5cxx11ERK5ScenedbRSo"), nullptr);
    EXPECT_EQ(dlsym(handle, "_ZN9DxfWriter10layer_nameERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"),
              nullptr);
}

TEST(CadWriters, EmptySceneGivesTheWritersReasonNotALoadFailure)
{
    Scene empty;
    std::ostringstream out;
    const std::string reason = CadWriters::write(CadWriters::Kind::step, empty, 1.0, false, out);
    EXPECT_FALSE(reason.empty());
    EXPECT_EQ(reason.find("cannot load"), std::string::npos) << reason;
}

TEST(CadWriters, VelmoraWithoutTheLibraryWritesTheOtherFormatsAndSaysWhyNotTheseThree)
{
    const fs::path root = vlm::temp_path("cad_writers_missing");
    fs::remove_all(root);
    fs::create_directories(root / "bin");
    fs::create_directories(root / "lib");
    fs::copy_file(fs::path(VELMORA_BINARY_DIR) / "bin" / "velmora", root / "bin" / "velmora");
    const std::string archive = (root / "demo.vlm").string();
    ASSERT_TRUE(vlm::demo::write_archive(archive));
    const std::string velmora = (root / "bin" / "velmora").string();
    const std::string env = "VELMORA_PLUGIN=" + (fs::path(VELMORA_BINARY_DIR) / "lib" / "libvelmora2rnx.so").string();

    const vlm::command_result stl = vlm::run_command(velmora, {"convert", archive, "-o", (root / "a.stl").string()}, env);
    EXPECT_EQ(stl.status, exit_success) << stl.err;
    for (const char* name : {"a.step", "a.igs", "a.dxf"}) {
        const vlm::command_result r = vlm::run_command(velmora, {"convert", archive, "-o", (root / name).string()}, env);
        EXPECT_NE(r.status, exit_success) << name;
        EXPECT_NE(r.err.find("cannot load the CAD writers: "), std::string::npos) << r.err;
        EXPECT_NE(r.err.find((root / "lib" / CadWriters::library_file).string()), std::string::npos) << r.err;
    }
    fs::remove_all(root);
}
