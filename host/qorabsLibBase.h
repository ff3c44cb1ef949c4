#pragma once
// qorabsLibBase: the root of every library the host loads. The host gets one
// instance through the library's exported get_instance(const qorabsAppInfo*),
// asks it for its identity and deletes it through the virtual destructor.
//
// The virtual operations are a binary contract with the host; their slots are
// in the order declared here:
//   1 set_output, 2 set_error (provided by qorabsLibInput), 3 library_name,
//   4 option, 5 database_number, 6 add_file_types, 7 add_extensions,
//   8 file_filter, 9 format_name (provided by the library), 10
//   translator_category, 11 destructor.
// qorabsLibInputEx appends slots 12 to 17. The strings returned are the
// library's own, static, and outlive the instance.
#include <iosfwd>

#include "host/intcoSet.h"
#include "host/qorabsTranslatorCategory.h"
#include "host/utStringcoSet.h"

class qorabsAppInfo;

class qorabsLibBase {
public:
    explicit qorabsLibBase(const qorabsAppInfo* app) : app_(app) {}
    qorabsLibBase(const qorabsLibBase&) = delete;
    qorabsLibBase& operator=(const qorabsLibBase&) = delete;

    // 1, 2. The host's message streams.
    virtual void set_output(std::ostream* out) = 0;
    virtual void set_error(std::ostream* err) = 0;
    // 3. The library's name.
    virtual const char* library_name() const = 0;
    // 4. The option word the host files the format under.
    virtual const char* option() const = 0;
    // 5. The host's database number of the format.
    virtual int database_number() const = 0;
    // 6. Adds the format's file-type ids (qouFileType) to the set.
    virtual void add_file_types(intcoSet& types) const = 0;
    // 7. Adds the file extensions the library claims to the set.
    virtual void add_extensions(utStringcoSet& extensions) const = 0;
    // 8. The file-dialog filter, "Description (*.ext)|*.ext".
    virtual const char* file_filter() const = 0;
    // 9. The format's name.
    virtual const char* format_name() const = 0;
    // 10. The category set by the library's constructor; empty if none.
    virtual qorabsTranslatorCategoryPtr translator_category() const;
    // 11.
    virtual ~qorabsLibBase();

    const qorabsAppInfo* app_info() const { return app_; }

protected:
    // The category slot a library fills in its constructor.
    qorabsTranslatorCategoryPtr translator_category_;

private:
    const qorabsAppInfo* app_;
};
