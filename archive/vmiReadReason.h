#pragma once
// Why the reader stopped or refused something, as values. The plug-in keeps
// them to itself; a vmiReadObserver (the command line's diagnosis, the
// inspect listing) receives them and puts them into words.
#include <string>
#include <utility>

#include "host/utString.h"

// Why the chunk chain of a data entry ended. The first fault met wins: a
// chain that ran to the entry's end past a damaged chunk ended bad_stream.
enum class vmiChainEnd {
    end,            // the entry's bytes ran out at a chunk boundary
    limit,          // vmiFile::max_chunks chunks were joined and more bytes followed
    budget,         // vmiFile::max_entry_bytes were produced with more to come, or a
                    // chunk declared more than the budget's worth of input
    negative_size,  // a header declared a negative size
    cut_short,      // the entry ended inside a header or inside a chunk's bytes
    bad_stream,     // a chunk's zlib stream was damaged (what it gave is kept)
};

// Why the reader refused an archive, an entry or a catalogue record.
enum class vmiSkipReason {
    not_a_zip,            // the unzip service cannot open the file
    entry_unreadable,     // the unzip service gave none of the entry's declared bytes
    no_catalogue,         // the archive holds no catalogue entry
    catalogue_empty,      // a catalogue entry holds no bytes
    catalogue_not_found,  // a catalogue entry is not numbered 0, the only number read
    catalogue_cut,        // a catalogue longer than the bound is cut at it
    no_separator,         // the catalogue has no "-" line, so no records
    no_records,           // the catalogue has a "-" line but no records behind it
    unknown_record,       // a level-3 record of a kind (type1, type2) no group takes
    no_group,             // a level-3 record before any level-2 group
    option_off,           // the option that takes the record's kind is 0
    entry_not_found,      // no data entry of the record's number came before the catalogue
    wrong_magic,          // the data entry is not of the kind the record names
    bad_record,           // the record's data could not be read (a negative size)
    bound_exceeded,       // a bound of the reader; bound names it
};

struct vmiReadSkip {
    vmiReadSkip() = default;
    explicit vmiReadSkip(vmiSkipReason r, utString e = utString()) : reason(r), entry(std::move(e)) {}

    // The same refusal naming a bound (or an option), with the value met and
    // the bound's own.
    vmiReadSkip with_bound(const char* name, long long met, long long bound_value) const
    {
        vmiReadSkip why = *this;
        why.bound = name;
        why.value = met;
        why.limit = bound_value;
        return why;
    }

    vmiSkipReason reason = vmiSkipReason::not_a_zip;
    // The entry concerned: the catalogue for a record, empty for the archive.
    utString entry;
    // A level-3 record's number (indx) and the data entry it names; -1 when
    // the refusal is not a record's.
    int record = -1;
    int data_indx = -1;
    // bound_exceeded: the bound's name; option_off: the option's. Else null.
    const char* bound = nullptr;
    // bound_exceeded: what was asked for and the bound's value;
    // entry_unreadable, catalogue_cut: the declared size and the bytes kept;
    // unknown_record: type1 and type2.
    long long value = 0;
    long long limit = 0;
    // wrong_magic: the first four bytes of the entry found and those wanted.
    std::string found;
    std::string wanted;
};
