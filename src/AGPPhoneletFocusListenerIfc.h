// Interface of services that follow the application coming to the front and going to the back.
#pragma once

class AGPPhoneletFocusListenerIfc {
public:
    virtual void phoneletHidden() = 0;
    virtual void phoneletShown() = 0;

protected:
    ~AGPPhoneletFocusListenerIfc() = default;
};
