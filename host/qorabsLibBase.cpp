#include "host/qorabsLibBase.h"

qorabsTranslatorCategoryPtr qorabsLibBase::translator_category() const
{
    return translator_category_;
}

qorabsLibBase::~qorabsLibBase() = default;
