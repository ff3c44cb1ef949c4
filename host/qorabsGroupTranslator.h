#pragma once
// qorabsGroupTranslator: a compound translator whose object is a plain group
// of the host (made of sto_class_annGroup()). A library derives from it,
// names the group in attributes() and usually gives it a mangler.
#include "host/qorabsCompoundTranslator.h"

class qorabsGroupTranslator : public qorabsCompoundTranslator {
public:
    qorabsGroupTranslator(const stoClass* cls, const giXform3& xform, const qorabsContext& context)
        : qorabsCompoundTranslator(cls, xform, context)
    {
    }

    const char* type_name() const override { return "group"; }
};
