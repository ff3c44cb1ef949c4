// The import library's bases as the host drives them: slots, dispatch, the
// cursor over the translators handed over, and the file-size check.
#include "host/qorabsLibInputEx.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsGroupTranslator.h"
#include "host/qorabsIfStream.h"
#include "host/qouFileType.h"
#include "host/stoClass.h"
#include "tests/translate/RecordingSink.h"
#include "tests/translate/VtableSlot.h"

namespace {

// A group that names itself, as a library's group translators do.
class NamedGroup : public qorabsGroupTranslator {
public:
    NamedGroup(const char* name, const qorabsContext& context)
        : qorabsGroupTranslator(sto_class_annGroup(), giXform3(), context), name_(name)
    {
    }
    void attributes(qorabsAttributeSet& set) override
    {
        qorabsName* n = nullptr;
        if (set.check_out(NAME, n))
            *n = qorabsName(name_, 0);
    }

private:
    utString name_;
};

// A library as the host sees one: identity, and read_input handing over one
// group per line of the file.
class FakeLibrary : public qorabsLibInputEx {
public:
    explicit FakeLibrary(const qorabsAppInfo* app) : qorabsLibInputEx(app)
    {
        translator_category_ = std::make_shared<qorabsTranslatorCategory>(utString("TESTING"));
    }
    const char* library_name() const override { return "fake"; }
    const char* option() const override { return "FAKE"; }
    int database_number() const override { return 7; }
    void add_file_types(intcoSet& types) const override { types.add(qouFileType(qouVELMORA)); }
    void add_extensions(utStringcoSet&) const override {}
    const char* file_filter() const override { return "Fake (*.f)|*.f"; }
    const char* format_name() const override { return "Fake"; }
    int read_input(const qorabsContext& context, qorabsIfStream& stream) override
    {
        std::ifstream in(stream.file_name().str());
        std::string line;
        while (std::getline(in, line))
            add_translator(std::make_shared<NamedGroup>(line.c_str(), context));
        return num_objects() > 0 ? 1 : 0;
    }
    ~FakeLibrary() override { destroyed = true; }
    static bool destroyed;
};
bool FakeLibrary::destroyed = false;

std::string temp_file(const char* name, const std::string& content)
{
    std::string path = std::string(VELMORA_BINARY_DIR) + "/" + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

}  // namespace

TEST(qorabsLibInputExSlots, OperationsSitInTheOrderTheHostExpects)
{
    // Slots 1 to 10, destructor 11, then 12 to 17.
    EXPECT_EQ(vtable_entry(&qorabsLibBase::set_output), entry_of_slot(1, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::set_error), entry_of_slot(2, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::library_name), entry_of_slot(3, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::option), entry_of_slot(4, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::database_number), entry_of_slot(5, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::add_file_types), entry_of_slot(6, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::add_extensions), entry_of_slot(7, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::file_filter), entry_of_slot(8, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::format_name), entry_of_slot(9, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibBase::translator_category), entry_of_slot(10, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInputEx::operator++), entry_of_slot(12, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInputEx::num_objects), entry_of_slot(13, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInputEx::attributes), entry_of_slot(14, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInputEx::send_to), entry_of_slot(15, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInputEx::read_input), entry_of_slot(16, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInputEx::check_file_size), entry_of_slot(17, 11));
    // What qorabsLibInput provides stays in the base's slots.
    EXPECT_EQ(vtable_entry(&qorabsLibInput::set_output), entry_of_slot(1, 11));
    EXPECT_EQ(vtable_entry(&qorabsLibInput::set_error), entry_of_slot(2, 11));
}

TEST(qorabsLibInputEx, OverriddenIdentityIsReachedThroughTheBase)
{
    qorabsAppInfo app(utString("host"), utString("1"));
    std::unique_ptr<qorabsLibBase> lib(new FakeLibrary(&app));
    EXPECT_STREQ(lib->library_name(), "fake");
    EXPECT_STREQ(lib->option(), "FAKE");
    EXPECT_EQ(lib->database_number(), 7);
    EXPECT_STREQ(lib->file_filter(), "Fake (*.f)|*.f");
    EXPECT_STREQ(lib->format_name(), "Fake");
    intcoSet types;
    lib->add_file_types(types);
    ASSERT_EQ(types.size(), 1);
    EXPECT_EQ(types[0], static_cast<int>(qouFileType(qouVELMORA)));
    ASSERT_TRUE(lib->translator_category());
    EXPECT_EQ(lib->translator_category()->name(), utString("TESTING"));
    EXPECT_EQ(lib->app_info(), &app);
    FakeLibrary::destroyed = false;
    lib.reset();
    EXPECT_TRUE(FakeLibrary::destroyed);
}

TEST(qorabsLibInputEx, TranslatorCategoryIsEmptyUntilTheLibrarySetsIt)
{
    struct Bare : FakeLibrary {
        Bare() : FakeLibrary(nullptr) { translator_category_.reset(); }
    } bare;
    EXPECT_FALSE(bare.translator_category());
}

TEST(qorabsLibInputEx, MessageStreamsAreKeptAndNeverWritten)
{
    FakeLibrary lib(nullptr);
    std::ostringstream out, err;
    qorabsLibBase& base = lib;
    base.set_output(&out);
    base.set_error(&err);
    EXPECT_EQ(lib.output(), &out);
    EXPECT_EQ(lib.error(), &err);
    EXPECT_TRUE(out.str().empty());
}

TEST(qorabsLibInputEx, HostWalk_SendsEachTranslatorInTurn)
{
    FakeLibrary lib(nullptr);
    qorabsContext context;
    qorabsIfStream stream(utString(temp_file("qorabs_walk.txt", "first\nsecond\n")));
    qorabsLibInputEx& input = lib;
    ASSERT_EQ(input.read_input(context, stream), 1);
    ASSERT_EQ(input.num_objects(), 2);
    RecordingSink sink;
    for (int i = 0; i < input.num_objects(); ++i, ++input)
        EXPECT_EQ(input.send_to(sink), qorabsTranslationStatus(0));
    ASSERT_EQ(sink.events.size(), 4u);
    EXPECT_EQ(sink.events[0].name, "first");
    EXPECT_EQ(sink.events[0].mangled, "first");
    EXPECT_EQ(sink.events[2].name, "second");
    // Past the end nothing is sent and there are no attributes.
    EXPECT_EQ(input.send_to(sink), qorabsTranslationStatus(1));
    qorabsAttributeSet set;
    input.attributes(set);
    EXPECT_EQ(set.size(), 0);
}

TEST(qorabsLibInputEx, Attributes_AreTheCurrentTranslators)
{
    FakeLibrary lib(nullptr);
    qorabsContext context;
    lib.add_translator(std::make_shared<NamedGroup>("one", context));
    lib.add_translator(std::make_shared<NamedGroup>("two", context));
    ++lib;
    EXPECT_EQ(lib.current(), 1);
    qorabsAttributeSet set;
    lib.attributes(set);
    EXPECT_EQ(set.name()->name(), utString("two"));
    ++lib;
    ++lib;
    EXPECT_EQ(lib.current(), 2);
}

TEST(qorabsLibInputEx, AddTranslator_IgnoresAnEmptyPointer)
{
    FakeLibrary lib(nullptr);
    lib.add_translator(qorabsTranslatorcoPrf());
    EXPECT_EQ(lib.num_objects(), 0);
    EXPECT_FALSE(lib.translator(0));
}

TEST(qorabsLibInputEx, CheckFileSize_NeedsARegularFileWithAByte)
{
    FakeLibrary lib(nullptr);
    qorabsIfStream full(utString(temp_file("qorabs_full.bin", "x")));
    qorabsIfStream empty(utString(temp_file("qorabs_empty.bin", "")));
    qorabsIfStream missing(utString(std::string(VELMORA_BINARY_DIR) + "/qorabs_no_such_file.bin"));
    qorabsIfStream directory(utString(VELMORA_BINARY_DIR));
    EXPECT_EQ(lib.check_file_size(full), 1);
    EXPECT_EQ(lib.check_file_size(empty), 0);
    EXPECT_EQ(lib.check_file_size(missing), 0);
    EXPECT_EQ(lib.check_file_size(directory), 0);
    EXPECT_EQ(full.file_name().str(), std::string(VELMORA_BINARY_DIR) + "/qorabs_full.bin");
}
