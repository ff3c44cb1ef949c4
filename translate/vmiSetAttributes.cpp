#include "translate/vmiSetAttributes.h"

#include "archive/vmiObjAttr.h"

void vmi_set_attributes(qorabsAttributeSet& set, qorabsAttributeId kind, const vmiObjAttr* record,
                        bool with_colour)
{
    qorabsAttribute* kind_attribute = nullptr;
    set.check_out(kind, kind_attribute);
    if (!record)
        return;
    qorabsName* name = nullptr;
    if (set.check_out(NAME, name))
        *name = qorabsName(record->name(), 0);
    qorabsLayer* layer = nullptr;
    if (set.check_out(LAYER, layer))
        *layer = qorabsLayer(record->level(), record->layer_name());
    if (!with_colour || record->colour() == 0)
        return;
    qorabsColour* colour = nullptr;
    if (set.check_out(COLOUR, colour))
        *colour = qorabsColour(record->colour());
}
