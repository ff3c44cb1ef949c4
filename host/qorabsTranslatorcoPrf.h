#pragma once
// qorabsTranslatorcoPrf: the host's shared, reference-counted pointer to a
// translator. A library hands translators out through it; an empty pointer
// means "no translator" (for instance when one could not be allocated).
#include <memory>

class qorabsTranslator;

using qorabsTranslatorcoPrf = std::shared_ptr<qorabsTranslator>;
