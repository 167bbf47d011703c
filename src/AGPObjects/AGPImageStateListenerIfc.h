// Interface of elements that show a picture which may arrive after they were displayed.
#pragma once

class AGPImageStateListenerIfc {
public:
    // The picture of the Image element `agpId` has become available.
    virtual void imageDownloaded(unsigned long agpId) = 0;

protected:
    ~AGPImageStateListenerIfc() = default;
};
