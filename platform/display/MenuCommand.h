// A command offered as a menu entry, soft key or selection: type SCREEN plus an identifier.
#pragma once

#include <memory>

#include "display/Command.h"

namespace DisplayAPI {

class Image;
struct ImageData;

class MenuCommand : public Command {
public:
    MenuCommand(const std::string& label, int id);
    // The picture is copied by reference to its content, so the Image may be deleted first.
    MenuCommand(const std::string& label, Image* image, int id);
    ~MenuCommand() override;

    int getId() const;
    std::shared_ptr<const ImageData> imageData() const;

private:
    int mId;
    std::shared_ptr<const ImageData> mImage;
};

} // namespace DisplayAPI
