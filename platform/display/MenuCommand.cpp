// Menu commands.
#include "display/MenuCommand.h"

#include "display/Image.h"

namespace DisplayAPI {

MenuCommand::MenuCommand(const std::string& label, int id) : Command(label, SCREEN), mId(id) {}

MenuCommand::MenuCommand(const std::string& label, Image* image, int id)
    : Command(label, SCREEN), mId(id), mImage(image != nullptr ? image->data() : nullptr) {}

MenuCommand::~MenuCommand() = default;

int MenuCommand::getId() const {
    core::Lock lock(core::mutex());
    return mId;
}

std::shared_ptr<const ImageData> MenuCommand::imageData() const {
    core::Lock lock(core::mutex());
    return mImage;
}

} // namespace DisplayAPI
