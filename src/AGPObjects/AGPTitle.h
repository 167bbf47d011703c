// The title of a screen.
#pragma once

#include "AGPContentElement.h"

class AGPTitle : public AGPContentElement<AGPObjectTypeInfo::ti_Title> {};
