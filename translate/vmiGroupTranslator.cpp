#include "translate/vmiGroupTranslator.h"

#include <new>

#include "host/stoClass.h"
#include "translate/vmiMangler.h"
#include "translate/vmiNewTranslator.h"
#include "translate/vmiObjectTranslator.h"

vmiGroupTranslator::vmiGroupTranslator(utString name, const giXform3& xform, const qorabsContext& context)
    : qorabsGroupTranslator(sto_class_annGroup(), xform, context), name_(std::move(name))
{
}

std::shared_ptr<vmiGroupTranslator> vmiGroupTranslator::make(utString name, const giXform3& xform,
                                                             const qorabsContext& context)
{
    return vmi_new_translator<vmiGroupTranslator>(std::move(name), xform, context);
}

void vmiGroupTranslator::attributes(qorabsAttributeSet& set)
{
    qorabsName* name = nullptr;
    if (set.check_out(NAME, name))
        *name = qorabsName(name_, 0);
    qorabsColour colour;
    if (!colour.is_valid())
        return;
    qorabsColour* slot = nullptr;
    if (set.check_out(COLOUR, slot))
        *slot = colour;
}

vmiGroupTranslator::~vmiGroupTranslator() = default;

std::unique_ptr<qorabsNameMangler> vmiGroupTranslator::create_name_mangler() const
{
    return std::unique_ptr<qorabsNameMangler>(new (std::nothrow) vmiMangler(name_));
}

int vmiGroupTranslator::add_object(vmiObject* object)
{
    qorabsTranslatorcoPrf t = vmi_object_translator(object, *context());
    if (!t)
        return 0;
    int before = num_translators();
    add_translator(std::move(t));
    return num_translators() > before ? 1 : 0;
}
