#include "host/qorabsTranslator.h"

#include "host/qorabsNameMangler.h"
#include "host/qorabsOutputSink.h"

qorabsTranslationStatus qorabsTranslator::process(qorabsOutputSink& sink, const qorabsNameMangler* mangler)
{
    qorabsAttributeSet set;
    attributes(set);
    utString name = set.name() ? set.name()->name() : utString();
    utString mangled = mangler ? mangler->do_mangling(name) : name;
    return create_item(sink, set, mangled);
}

void qorabsTranslator::attributes(qorabsAttributeSet&) {}

void qorabsTranslator::set_transform(const giXform3& xform)
{
    transform_ = xform;
    has_transform_ = true;
}

int qorabsTranslator::non_spts_supported() const { return 0; }

int qorabsTranslator::num_translators() const { return 0; }

qorabsTranslatorcoPrf qorabsTranslator::current_translator(int) const { return {}; }

void qorabsTranslator::set_output(std::ostream* out) { output_ = out; }

void qorabsTranslator::set_error(std::ostream* err) { error_ = err; }

qorabsTranslator::~qorabsTranslator() = default;
