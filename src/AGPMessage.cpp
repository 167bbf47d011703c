// The unit of work of the request pipeline.
#include "AGPMessage.h"

namespace {

const char* const kTypeNames[] = {
    "Unknown", "UrlRequest_XML", "UrlRequest_XML_cache_expired_back", "UrlRequest_XML_cache_expired_screenId",
    "UrlRequest_XML_push_active", "UrlRequest_XML_push_queue", "UrlRequest_XML_push_indicate",
    "UrlRequest_XML_push_force", "UrlRequest_Exit", "UrlRequest_Remote_Trace", "UrlRequest_Image",
    "UrlRequest_Display_Error", "KeyPressed", "Unknown", "Command_Error", "Command_Back", "Command_Cancel",
    "Command_Exit", "Command_Help", "Command_Item", "Command_OK", "Command_Screen", "Command_Stop",
    "Command_Right", "Command_Timer", "Command_Save", "Command_Delete", "Command_Skip_Back",
    "Command_Skip_Right", "Command_Pause", "Command_Tabbar_Active", "Command_Tabbar_Inactive",
    "Command_Tab_Back", "Command_Tab_Forward", "Command_Action", "Command_Select", "Command_Update",
    "Command_Dismiss_context_menu",
    // Screen by ID and previous screen have no name of their own.
    "Unknown", "Unknown", "Command_Item_state_changed"};

const int kTypeCount = static_cast<int>(sizeof kTypeNames / sizeof kTypeNames[0]);

std::int32_t priorityOf(AGPMessage::MessageType type) {
    if (type == AGPMessage::Unknown) {
        return AGPMessage::Low;
    }
    if (type == AGPMessage::UrlRequest_Display_Error || type == AGPMessage::KeyPressed) {
        return AGPMessage::High;
    }
    return AGPMessage::Mid;
}

} // namespace

AGPMessage::AGPMessage(MessageType messageType, std::string messageContent)
    : type(messageType), priority(priorityOf(messageType)), content(std::move(messageContent)) {}

AGPMessage::MessageType AGPMessage::translateCommandType(int commandType) {
    if (commandType < 0 || commandType > 19) {
        return Unknown;
    }
    return static_cast<MessageType>(Command_Error + commandType);
}

std::string AGPMessage::getMessageTypeString(MessageType type) {
    if (type < 0 || type >= kTypeCount) {
        return "Unknown";
    }
    return kTypeNames[type];
}

std::string AGPMessage::getMessagePrioString() const {
    switch (priority) {
    case Low:
        return "Low";
    case Mid:
        return "Mid";
    case High:
        return "High";
    default:
        return "Unknown";
    }
}

bool operator<(const AGPMessage& a, const AGPMessage& b) {
    if (a.priority != b.priority) {
        return a.priority < b.priority;
    }
    return b.id < a.id;
}

void AGPMessage::setWidgets(DisplayAPI::Command* widgetCommand, DisplayAPI::Displayable* widget) {
    command = widgetCommand;
    displayable = widget;
    mWatched = true;
    mCommandLife =
        widgetCommand != nullptr ? widgetCommand->ref() : DisplayAPI::core::Ref<DisplayAPI::Command>();
    mDisplayableLife = widget != nullptr ? widget->ref() : DisplayAPI::core::Ref<DisplayAPI::Displayable>();
}

bool AGPMessage::widgetsAlive() const {
    if (!mWatched) {
        return true;
    }
    return (command == nullptr || mCommandLife.get() != nullptr) &&
           (displayable == nullptr || mDisplayableLife.get() != nullptr);
}
