#pragma once

#include <QtGlobal>

/// The progress bar as the drivers see it; amounts are bytes.
class ProgressDisplay {
public:
    virtual ~ProgressDisplay() = default;

    virtual void beginBatch() = 0;
    virtual void setMaximumFor(qint64 size) = 0; ///< a size of 0 or less leaves the maximum
    virtual void setValue(qint64 value) = 0; ///< the rate label stays
    virtual void finish() = 0; ///< value 0 and no rate text; also the end of a batch
};
