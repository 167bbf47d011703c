// Interface of elements that follow the value of a gauge (the player's progress bar).
#pragma once

class AGPIppGauge;

class AGPIppGaugeValueChangeListenerIfc {
public:
    // Called on the gauge's queue thread after each step of an automatic gauge.
    virtual void gaugeValueChanged(AGPIppGauge* gauge) = 0;

protected:
    ~AGPIppGaugeValueChangeListenerIfc() = default;
};
