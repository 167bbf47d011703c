// Interface of elements that want to know when their screen is shown or taken away.
#pragma once

class AGPScreenFocusListenerIfc {
public:
    virtual void screenGainedFocus() = 0;
    virtual void screenLostFocus() = 0;

protected:
    ~AGPScreenFocusListenerIfc() = default;
};
