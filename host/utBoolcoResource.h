#pragma once
// utBoolcoResource: one boolean option of the host's resource table: a value
// and the default it was registered with.
class utBoolcoResource {
public:
    explicit utBoolcoResource(int default_value)
        : default_(default_value != 0), value_(default_value != 0)
    {
    }
    int value() const { return value_ ? 1 : 0; }
    void set_value(int v) { value_ = v != 0; }
    int default_value() const { return default_ ? 1 : 0; }
    void reset() { value_ = default_; }

private:
    bool default_;
    bool value_;
};
