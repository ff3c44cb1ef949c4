#pragma once
// qorabsContext: the host's state for one translation, handed to read_input
// and on to every translator made for it. The translators keep a pointer to
// it, so it must outlive them.
class qorabsAppInfo;

class qorabsContext {
public:
    qorabsContext() = default;
    explicit qorabsContext(const qorabsAppInfo* app) : app_(app) {}
    // The application importing; may be null.
    const qorabsAppInfo* app_info() const { return app_; }

private:
    const qorabsAppInfo* app_ = nullptr;
};
