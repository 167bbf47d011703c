// Alternative text of an image or phone number.
#pragma once

#include "AGPContentElement.h"

class AGPAltText : public AGPContentElement<AGPObjectTypeInfo::ti_AltText> {};
