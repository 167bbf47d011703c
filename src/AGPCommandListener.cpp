// Turns commands triggered on widgets and timers into messages on the element's queue.
#include "AGPCommandListener.h"

#define AGP_LOG_MODULE "AGPGUIHandler"
#define AGP_LOG_SOURCE "./src/AGPCommandListener.cpp"

#include <cstdio>

#include "AGPGUIHandler.h"
#include "AGPLog.h"
#include "AGPMessage.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "display/Command.h"
#include "display/Displayable.h"

void AGPCommandListener::commandAction(DisplayAPI::Command* command, DisplayAPI::Displayable* displayable) {
    if (!DisplayAPI::Command::exists(command)) {
        std::printf("Unknown command!\n");
        return;
    }
    AGPMessage message;
    message.priority = AGPMessage::Mid;
    message.type = AGPMessage::translateCommandType(command->getType());
    if (message.type == AGPMessage::Unknown) {
        AGP_LOG(5, "Unsupported command received");
        return;
    }
    message.label = command->getBasicText();
    message.agpId =
        static_cast<AGPId>(displayable != nullptr ? displayable->getOwnerId() : command->getOwnerId());
    if (message.agpId == 0) {
        AGP_LOG(5, "Command on no displayable");
        // Widgets that belong to no element (the tab screen, for one) act for what is shown now.
        AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
        message.agpId = gui != nullptr ? gui->getCurrentDisplayableId() : 0;
        if (message.agpId == 0) {
            AGP_LOG(5, "No element found for command");
            return;
        }
    }
    // Both are alive while this call runs; the queue checks them again before an element sees them.
    message.setWidgets(command, displayable);
    // Asked by identifier: a queue thread may delete the element at any moment.
    const std::string typeName = AGPPhoneletManager::getAGPObjectMap()->getTypeNameOf(message.agpId);
    AGP_LOG(5, "Received command label: %s, Displayable ptr: %p, AGPID=%lu (%s)", message.label.c_str(),
            static_cast<void*>(displayable), static_cast<unsigned long>(message.agpId), typeName.c_str());
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues != nullptr) {
        queues->addToMessageQueue(message);
    }
}
