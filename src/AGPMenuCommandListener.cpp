// Turns chosen menu entries into messages of the type each entry carries as its identifier.
#include "AGPMenuCommandListener.h"

#define AGP_LOG_MODULE "AGPGUIHandler"
#define AGP_LOG_SOURCE "./src/AGPMenuCommandListener.cpp"

#include <cstdio>

#include "AGPLog.h"
#include "AGPMessage.h"
#include "AGPMessageQueueHandler.h"
#include "AGPPhoneletManager.h"
#include "display/Displayable.h"
#include "display/MenuCommand.h"

void AGPMenuCommandListener::commandAction(DisplayAPI::Command* command,
                                           DisplayAPI::Displayable* displayable) {
    if (!DisplayAPI::Command::exists(command)) {
        std::printf("Unknown command!\n");
        return;
    }
    auto* menuCommand = dynamic_cast<DisplayAPI::MenuCommand*>(command);
    if (command->getType() != DisplayAPI::Command::SCREEN || menuCommand == nullptr ||
        menuCommand->getId() == 0) {
        AGPCommandListener::commandAction(command, displayable);
        return;
    }
    AGPMessage message;
    message.priority = AGPMessage::Mid;
    message.type = static_cast<AGPMessage::MessageType>(menuCommand->getId());
    message.label = command->getBasicText();
    message.agpId = static_cast<AGPId>(displayable != nullptr ? displayable->getOwnerId() : 0);
    message.setWidgets(command, displayable);
    AGP_LOG(5, "Received MenuCommand label: %s, Displayable ptr: %p, AGPID=%lu", message.label.c_str(),
            static_cast<void*>(displayable), static_cast<unsigned long>(message.agpId));
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues != nullptr) {
        queues->addToMessageQueue(message);
    }
}
