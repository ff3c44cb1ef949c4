// Importing the demo archive end to end, as a host does it: libvelmora2rnx.so
// loaded with dlopen, an instance made by its get_instance, read_input on the
// archive and the walk over every translator handed over into a sink that
// only counts what it receives. That is the whole import a user waits for:
// opening and inflating the archive, the catalogue, the scans and pictures,
// every insole design with its height sections, the finished grids and their
// triangulation. The plug-in is loaded rather than linked so that the
// measured code is the library a host loads, built as it ships.
//
// Run it from a build configured with the tests and the benchmarks (the demo
// writer lives with the tests' fixtures):
//
//   cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DVELMORA_BENCHMARKS=ON
//   cmake --build build --target import_bench velmora2rnx
//   build/bin/import_bench
//
// VELMORA_PLUGIN=path/libvelmora2rnx.so picks another build of the plug-in.
// The benchmark writes the demo archive itself, once in full and once
// without each height section, into the temporary folder.
//
// Reading the figures (all times are processor time of the whole process,
// not wall-clock time: the machine is shared):
// - ImportDemo: Time is one whole import; the counter ms_per_model is the
//   median import divided by the archive's four insole models (the scans and
//   pictures are part of the import, so they are shared out too).
// - SectionShare/<section>: each iteration imports the full archive and the
//   archive without that section, one after the other, so that both see the
//   same machine. with_ms and without_ms are the medians per model; share is
//   the median of (with - without) / with over the pairs: the part of the
//   whole import's time that the section's modifier takes (in the two designs
//   that use it; HGlaett is in all four). A share under about 0.01 cannot
//   be told from the noise of a shared machine: such a modifier costs next
//   to nothing.
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <time.h>

#include <benchmark/benchmark.h>

#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qorabsLibInputEx.h"
#include "host/qorabsOutputSink.h"
#include "tests/support/demoArchive.h"
#include "tests/support/vlmWriter.h"

namespace {

// The demo archive's insole models: the time of an import is shared by them.
constexpr int demo_models = 4;

using get_instance_fn = qorabsLibInputEx* (*)(const qorabsAppInfo*);

// The plug-in, loaded once for the program and never unloaded (the host's
// resource table keeps what it registered).
get_instance_fn plugin()
{
    static get_instance_fn get_instance = [] {
        const char* chosen = std::getenv("VELMORA_PLUGIN");
        const std::string path = chosen ? chosen : std::string(VELMORA_BINARY_DIR) + "/lib/libvelmora2rnx.so";
        void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handle) {
            std::fprintf(stderr, "import_bench: %s: %s\n", path.c_str(), dlerror());
            return get_instance_fn(nullptr);
        }
        return reinterpret_cast<get_instance_fn>(dlsym(handle, "get_instance"));
    }();
    return get_instance;
}

qorabsAppInfo& app_info()
{
    static qorabsAppInfo app(utString("import_bench"), utString("1"));
    return app;
}

// A host's sink that keeps nothing: it counts the points and triangles
// delivered, so that the walk's work cannot be skipped.
class counting_sink : public qorabsOutputSink {
public:
    long long items = 0;

    void begin_group(const qorabsAttributeSet&, const utString&, const giXform3&) override { ++items; }
    void end_group() override {}
    void triblock(const qorabsAttributeSet&, const utString&, const qorabsTranslationStatus&,
                  const giTriBlock& block) override
    {
        items += block.num_vertices() + block.num_triangles();
    }
    void curve(const qorabsAttributeSet&, const utString&, const qorabsTranslationStatus&,
               const rnxCurvePtr3& curve) override
    {
        items += curve ? 1 : 0;
    }
    void pointcloud(const qorabsAttributeSet&, const utString&, const annPointCloudData& data) override
    {
        items += data.num_points();
    }
};

// One whole import; the items delivered, or -1 when the plug-in could not
// import the archive.
long long import_archive(const std::string& path)
{
    get_instance_fn get_instance = plugin();
    if (!get_instance)
        return -1;
    std::unique_ptr<qorabsLibInputEx> input(get_instance(&app_info()));
    if (!input)
        return -1;
    qorabsContext context(&app_info());
    qorabsIfStream stream{utString(path)};
    if (!input->read_input(context, stream))
        return -1;
    counting_sink sink;
    for (int i = 0; i < input->num_objects(); ++i, ++*input)
        input->send_to(sink);
    return sink.items;
}

// The archives written, removed when the program ends.
struct written_archives {
    std::vector<std::pair<std::string, std::string>> paths;  // (section left out, path)
    ~written_archives()
    {
        for (const auto& w : paths)
            std::remove(w.second.c_str());
    }
};

// The demo archive written without the section named, once per program.
const std::string& demo_archive(const std::string& without = "")
{
    static written_archives archives;
    auto& written = archives.paths;
    for (const auto& w : written)
        if (w.first == without)
            return w.second;
    const std::string path = vlm::temp_path("import_bench_demo" + (without.empty() ? "" : "_without_" + without) + ".vlm");
    std::vector<std::string> left_out;
    if (!without.empty())
        left_out.push_back(without);
    if (!vlm::demo::write_archive(path, left_out))
        std::fprintf(stderr, "import_bench: %s: cannot write\n", path.c_str());
    written.emplace_back(without, path);
    return written.back().second;
}

// The processor time of the whole process, in seconds. The machine is
// shared: the wall clock would count the time other programs take from us,
// the processor time only what the import itself spends, in every thread.
double cpu_seconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

double seconds_of(const std::string& path, long long& items)
{
    const double start = cpu_seconds();
    items = import_archive(path);
    return cpu_seconds() - start;
}

double median(std::vector<double> v)
{
    if (v.empty())
        return 0.0;
    std::sort(v.begin(), v.end());
    const std::size_t m = v.size() / 2;
    return v.size() % 2 ? v[m] : 0.5 * (v[m - 1] + v[m]);
}

void BM_ImportDemo(benchmark::State& state)
{
    const std::string& path = demo_archive();
    long long items = 0;
    std::vector<double> times;
    for (auto _ : state) {
        const double t = seconds_of(path, items);
        benchmark::DoNotOptimize(items);
        state.SetIterationTime(t);
        times.push_back(t);
    }
    if (items < 0) {
        state.SkipWithError("the plug-in did not import the demo archive");
        return;
    }
    state.counters["ms_per_model"] = 1e3 * median(times) / demo_models;
}
BENCHMARK(BM_ImportDemo)->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(2.0);

void BM_SectionShare(benchmark::State& state, const std::string& section)
{
    const std::string& with_path = demo_archive();
    const std::string& without_path = demo_archive(section);
    std::vector<double> with, without, share;
    long long items_with = 0, items_without = 0;
    for (auto _ : state) {
        const double a = seconds_of(with_path, items_with);
        const double b = seconds_of(without_path, items_without);
        with.push_back(a);
        without.push_back(b);
        share.push_back((a - b) / a);
    }
    if (items_with < 0 || items_without < 0) {
        state.SkipWithError("the plug-in did not import the demo archive");
        return;
    }
    state.counters["with_ms"] = 1e3 * median(with) / demo_models;
    state.counters["without_ms"] = 1e3 * median(without) / demo_models;
    state.counters["share"] = median(share);
}

#define SECTION_SHARE(name) \
    BENCHMARK_CAPTURE(BM_SectionShare, name, std::string(#name))->Unit(benchmark::kMillisecond)->MinTime(3.0)
SECTION_SHARE(HPelotte);
SECTION_SHARE(HPelotteS);
SECTION_SHARE(HPlinie);
SECTION_SHARE(HPunkt);
SECTION_SHARE(HTorsion);
SECTION_SHARE(HSpreng);
SECTION_SHARE(HSprenglinie);
SECTION_SHARE(HFFootMod);
SECTION_SHARE(HGlaett);
SECTION_SHARE(HGloba);
SECTION_SHARE(HAbzug);

} // namespace
