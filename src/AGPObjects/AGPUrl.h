// The URL that the requests of a screen go to.
#pragma once

#include "AGPContentElement.h"

class AGPUrl : public AGPContentElement<AGPObjectTypeInfo::ti_Url> {};
