#pragma once
// qorabsLibInputEx: an import library that hands the host translators.
//
// read_input (slot 16) reads the file and hands over the translators of what
// it found with add_translator; the host then walks them (see
// qorabsOutputSink.h):
//
//     if (input.read_input(context, stream))
//         for (int i = 0; i < input.num_objects(); ++i, ++input)
//             input.send_to(sink);
//
// The input keeps the translators; what they point to belongs to the library
// instance, which must outlive the host's use of them.
//
// Slots 12 operator++, 13 num_objects, 14 attributes, 15 send_to,
// 16 read_input, 17 check_file_size follow qorabsLibBase's eleven.
#include "host/qorabsAttributeSet.h"
#include "host/qorabsLibInput.h"
#include "host/qorabsTranslationStatus.h"
#include "host/qorabsTranslatorcoPrf.h"

#include <vector>

class qorabsContext;
class qorabsIfStream;
class qorabsOutputSink;

class qorabsLibInputEx : public qorabsLibInput {
public:
    using qorabsLibInput::qorabsLibInput;

    // 12. Moves to the next translator (the current one starts at the first).
    virtual qorabsLibInputEx& operator++();
    // 13. The number of translators added.
    virtual int num_objects() const;
    // 14. The current translator's attributes; none past the end.
    virtual void attributes(qorabsAttributeSet& set);
    // 15. Walks the current translator into the sink (process(sink, nullptr));
    // status 1 past the end.
    virtual qorabsTranslationStatus send_to(qorabsOutputSink& sink);
    // 16. Reads the stream's file; 1 on success, 0 on failure.
    virtual int read_input(const qorabsContext& context, qorabsIfStream& stream) = 0;
    // 17. 1 when the stream's file is a regular file holding at least one byte.
    virtual int check_file_size(qorabsIfStream& stream);

    // Hands the host a translator; an empty pointer is ignored.
    void add_translator(qorabsTranslatorcoPrf translator);
    // Translator i in the order added; empty outside.
    qorabsTranslatorcoPrf translator(int i) const;
    // The index operator++ has reached.
    int current() const { return current_; }

private:
    std::vector<qorabsTranslatorcoPrf> translators_;
    int current_ = 0;
};
