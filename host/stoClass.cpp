#include "host/stoClass.h"

const stoClass* sto_class_annGroup()
{
    static const stoClass group("annGroup");
    return &group;
}
