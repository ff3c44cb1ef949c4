#pragma once
// vmiTriblockTranslator: the host's triangle-block translator for one grid
// record; it forwards to its own copy of the vmiTriBlock wrapper.
#include "host/qorabsTriblockTranslator.h"
#include "translate/vmiTriBlock.h"

class vmiTriblockTranslator : public qorabsTriblockTranslator {
public:
    vmiTriblockTranslator(const qorabsContext& context, const vmiTriBlock& wrapper);

    // 2. The base's attributes, then the wrapper's.
    void attributes(qorabsAttributeSet& set) override;
    // 9.
    ~vmiTriblockTranslator() override;
    // 11. Status 0 when the wrapper's convert made a block, else 1.
    qorabsTranslationStatus create_triblock(giTriBlock& tb) override;

    const vmiTriBlock& wrapper() const { return wrapper_; }

private:
    vmiTriBlock wrapper_;
};
