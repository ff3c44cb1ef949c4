#pragma once
// qorabsTranslationStatus: the outcome of one item's translation: 0 success,
// 1 failure (the item yielded no geometry; the host decides what to report).
class qorabsTranslationStatus {
public:
    static constexpr int success = 0;
    static constexpr int failure = 1;

    qorabsTranslationStatus() = default;
    explicit qorabsTranslationStatus(int value) : value_(value) {}
    int value() const { return value_; }
    bool ok() const { return value_ == success; }
    friend bool operator==(const qorabsTranslationStatus& a, const qorabsTranslationStatus& b)
    {
        return a.value_ == b.value_;
    }

private:
    int value_ = success;
};
