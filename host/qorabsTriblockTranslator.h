#pragma once
// qorabsTriblockTranslator: a translator whose item is a triangle block.
// Slot 11 create_triblock follows the base's ten.
#include "host/giTriBlock.h"
#include "host/qorabsTranslator.h"

class qorabsTriblockTranslator : public qorabsTranslator {
public:
    using qorabsTranslator::qorabsTranslator;

    // Makes an empty block, asks create_triblock to fill it and hands it to
    // the sink (an empty block when the status is 1).
    qorabsTranslationStatus create_item(qorabsOutputSink& sink, const qorabsAttributeSet& attrs,
                                        const utString& mangled) override;
    // 11. Fills tb; status 0 when it holds geometry. The base makes none (1).
    virtual qorabsTranslationStatus create_triblock(giTriBlock& tb);
};
