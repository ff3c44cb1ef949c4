#include "host/qorabsLibInputEx.h"

#include <filesystem>
#include <new>
#include <system_error>

#include "host/qorabsIfStream.h"
#include "host/qorabsOutputSink.h"
#include "host/qorabsTranslator.h"

qorabsLibInputEx& qorabsLibInputEx::operator++()
{
    if (current_ < num_objects())
        current_++;
    return *this;
}

int qorabsLibInputEx::num_objects() const
{
    return static_cast<int>(translators_.size());
}

void qorabsLibInputEx::attributes(qorabsAttributeSet& set)
{
    if (qorabsTranslatorcoPrf t = translator(current_))
        t->attributes(set);
}

qorabsTranslationStatus qorabsLibInputEx::send_to(qorabsOutputSink& sink)
{
    qorabsTranslatorcoPrf t = translator(current_);
    if (!t)
        return qorabsTranslationStatus(qorabsTranslationStatus::failure);
    return t->process(sink, nullptr);
}

int qorabsLibInputEx::check_file_size(qorabsIfStream& stream)
{
    std::error_code ec;
    std::filesystem::path p(stream.file_name().str());
    if (!std::filesystem::is_regular_file(p, ec) || ec)
        return 0;
    std::uintmax_t n = std::filesystem::file_size(p, ec);
    return !ec && n > 0 ? 1 : 0;
}

void qorabsLibInputEx::add_translator(qorabsTranslatorcoPrf translator)
{
    if (!translator)
        return;
    try {
        translators_.push_back(std::move(translator));
    } catch (const std::bad_alloc&) {
    }
}

qorabsTranslatorcoPrf qorabsLibInputEx::translator(int i) const
{
    if (i < 0 || i >= num_objects())
        return {};
    return translators_[static_cast<std::size_t>(i)];
}
