// The label of an item or command.
#pragma once

#include "AGPContentElement.h"

class AGPLabel : public AGPContentElement<AGPObjectTypeInfo::ti_Label> {};
