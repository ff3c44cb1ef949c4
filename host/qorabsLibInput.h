#pragma once
// qorabsLibInput: an import library. It keeps the host's message streams
// (slots 1 and 2); a silent library never writes to them.
#include "host/qorabsLibSource.h"

class qorabsLibInput : public qorabsLibSource {
public:
    using qorabsLibSource::qorabsLibSource;

    void set_output(std::ostream* out) override { output_ = out; }
    void set_error(std::ostream* err) override { error_ = err; }
    std::ostream* output() const { return output_; }
    std::ostream* error() const { return error_; }

private:
    std::ostream* output_ = nullptr;
    std::ostream* error_ = nullptr;
};
