// Turns finished edits of form items into messages for the item's element.
#include "AGPItemStateListener.h"

#include "AGPMessage.h"
#include "AGPMessageQueueHandler.h"
#include "AGPPhoneletManager.h"
#include "display/Item.h"

void AGPItemStateListener::itemStateChanged(DisplayAPI::Item* item) {
    if (item == nullptr || item->getOwnerId() == 0) {
        return;
    }
    AGPMessage message(AGPMessage::Command_Item_state_changed, "");
    message.agpId = static_cast<AGPId>(item->getOwnerId());
    message.setWidgets(nullptr, item);
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues != nullptr) {
        queues->addToMessageQueue(message);
    }
}
