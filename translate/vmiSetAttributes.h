#pragma once
// vmi_set_attributes: the attributes every object wrapper hands the host, in
// this order: the kind attribute (only checked out), NAME (the object name),
// LAYER (level and layer name) and, when with_colour and the record's colour
// is non-zero, COLOUR. Without a record only the kind is checked out.
#include "host/qorabsAttributeSet.h"

class vmiObjAttr;

void vmi_set_attributes(qorabsAttributeSet& set, qorabsAttributeId kind, const vmiObjAttr* record,
                        bool with_colour);
