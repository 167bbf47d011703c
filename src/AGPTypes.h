// Identifier types shared by the elements, the registry, the messages and the queues.
#pragma once

#include <cstdint>

// Registry identifier of an element; 0 means no element. Handed out from 1 upward.
using AGPId = std::uint32_t;

// Signed number of a message queue: 0 serves an application without tabs, 1 to 3 the tabs.
// The queue handler publishes it as AGPMessageQueueHandler::messageQueueId.
using AGPQueueNumber = std::int32_t;
